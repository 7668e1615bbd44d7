#include "apps/driverhost/terminal/status_line.h"

#include "apps/driverhost/terminal/terminal.h"

#include <atomic>
#include <cstdio>
#include <unistd.h>

namespace
{

// Traces come from any thread.
std::atomic<bool> isShown{false};

} // namespace

bool hasStatusLine()
{
    return isScreen(STDERR_FILENO);
}

void showStatus(const QString &text)
{
    if (!hasStatusLine())
        return;
    const QByteArray line = text.left(screenWidth(STDERR_FILENO) - 1).toLocal8Bit();
    std::fprintf(stderr, "\r%s\x1b[K", line.constData());
    std::fflush(stderr);
    isShown = true;
}

void clearStatus()
{
    if (isShown.exchange(false))
        std::fputs("\r\x1b[K", stderr);
}
