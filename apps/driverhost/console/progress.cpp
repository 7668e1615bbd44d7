#include "apps/driverhost/console/progress.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace
{

const int BarLength = 30;
const int TimeBetween = 100; // milliseconds

} // namespace

Progress::Progress(const QString &title, qint64 total)
    : m_title(title), m_total(std::max<qint64>(total, 1)), m_isScreen(isatty(STDERR_FILENO) == 1)
{
}

Progress::~Progress()
{
    if (m_isShown)
        std::fputs("\r\x1b[K", stderr);
}

void Progress::show(qint64 done, const QString &note)
{
    if (!m_isScreen || (m_isShown && !m_lastShown.hasExpired(TimeBetween)))
        return;
    const int filled = static_cast<int>(std::min(done, m_total) * BarLength / m_total);
    const QString bar = QString(filled, QLatin1Char('#')) + QString(BarLength - filled, QLatin1Char('.'));
    const QString line = QStringLiteral("%1 [%2] %3 of %4  %5")
                             .arg(m_title, bar, QString::number(done), QString::number(m_total), note);
    std::fprintf(stderr, "\r%s\x1b[K", line.toLocal8Bit().constData());
    std::fflush(stderr);
    m_isShown = true;
    m_lastShown.start();
}
