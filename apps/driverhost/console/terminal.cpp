#include "apps/driverhost/console/terminal.h"

#include <QByteArray>

#include <cstdio>
#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace
{

const int DefaultWidth = 80;
const int DefaultHeight = 24;

const char HideCursor[] = "\x1b[?25l";
const char ShowCursor[] = "\x1b[?25h";
const char EraseToEndOfLine[] = "\x1b[K";
const char EraseBelow[] = "\x1b[J";

winsize screenSize()
{
    winsize size = {};
    ioctl(STDOUT_FILENO, TIOCGWINSZ, &size);
    return size;
}

} // namespace

bool isScreen()
{
    const QByteArray kind = qgetenv("TERM");
    return isatty(STDOUT_FILENO) == 1 && !kind.isEmpty() && kind != "dumb";
}

int screenWidth()
{
    const int width = screenSize().ws_col;
    return width > 0 ? width : DefaultWidth;
}

int screenHeight()
{
    const int height = screenSize().ws_row;
    return height > 0 ? height : DefaultHeight;
}

bool takesUnicode()
{
    return qstrcmp(nl_langinfo(CODESET), "UTF-8") == 0;
}

LiveLines::LiveLines()
{
    std::fputs(HideCursor, stdout);
}

LiveLines::~LiveLines()
{
    std::fputs(ShowCursor, stdout);
    std::fflush(stdout);
}

bool LiveLines::show(const QStringList &lines)
{
    const int max = screenHeight() - 1;
    QStringList fitting = lines;
    if (lines.size() > max)
        fitting = lines.mid(0, max - 1) << QStringLiteral("(%1 more lines)").arg(lines.size() - max + 1);

    QByteArray text;
    if (m_shown > 0)
        text = "\x1b[" + QByteArray::number(m_shown) + 'A';
    for (const QString &line : qAsConst(fitting))
        text += '\r' + line.left(screenWidth()).toLocal8Bit() + EraseToEndOfLine + '\n';
    text += EraseBelow;
    m_shown = int(fitting.size());
    return std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stdout) ==
               static_cast<size_t>(text.size()) &&
           std::fflush(stdout) == 0;
}
