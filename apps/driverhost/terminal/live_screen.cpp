#include "apps/driverhost/terminal/live_screen.h"

#include "apps/driverhost/terminal/terminal.h"
#include "apps/driverhost/terminal/terminal_keys.h"
#include "drivers/qt/qt_lines.h"

#include <algorithm>
#include <cstdio>

namespace
{

const char EnterScreen[] = "\x1b[?1049h\x1b[?25l";
const char LeaveScreen[] = "\x1b[?25h\x1b[?1049l";
const char ToTheTop[] = "\x1b[H";
const char EraseToEndOfLine[] = "\x1b[K";
const char EraseBelow[] = "\x1b[J";

// What is narrower shows less.
const int LeastWidth = 20;

bool write(const QByteArray &text)
{
    return std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stdout) ==
               static_cast<size_t>(text.size()) &&
           std::fflush(stdout) == 0;
}

// Where a line is broken: rather between its parts, which have two blanks between them, than between words.
int breakIn(const QString &line, int width)
{
    for (const char *gap : {"  ", " "}) {
        const int blank = int(line.lastIndexOf(QLatin1String(gap), width));
        if (blank > width / 2)
            return blank;
    }
    return width;
}

// So that the terminal need not cut what is longer than it is wide.
QStringList wrapped(const QStringList &lines, int screenWidth)
{
    const int width = std::max(screenWidth, LeastWidth);
    QStringList all;
    for (QString rest : lines) {
        while (rest.size() > width) {
            const int end = breakIn(rest, width);
            all += rest.left(end);
            rest = QStringLiteral("  ") + rest.mid(end).trimmed();
        }
        all += rest;
    }
    return all;
}

} // namespace

LiveScreen::LiveScreen()
{
    takeKeys(EnterScreen, LeaveScreen);
    write(EnterScreen);
}

LiveScreen::~LiveScreen()
{
    QByteArray text(LeaveScreen);
    for (const QStringList &lines : {m_page.head, m_page.rows, m_page.foot}) {
        for (const QString &line : lines)
            text += line.toLocal8Bit() + '\n';
    }
    write(text);
    releaseKeys();
}

bool LiveScreen::show(const Page &page)
{
    m_page = page;
    m_width = screenWidth();
    m_height = screenHeight();
    QByteArray text(ToTheTop);
    for (const QString &line : window(page))
        text += '\r' + line.left(m_width).toLocal8Bit() + EraseToEndOfLine + '\n';
    return write(text + EraseBelow);
}

// The cursor stands on the last line.
QStringList LiveScreen::window(const Page &page)
{
    const QStringList head = wrapped(page.head, m_width);
    const QStringList foot = wrapped(page.foot, m_width);
    const int rows = sizeOf(page.rows);
    const int max = std::max(m_height - 1 - sizeOf(head) - sizeOf(foot), 1);
    m_rowsShown = rows > max ? std::max(max - 1, 1) : rows;
    m_firstRow = std::clamp(m_firstRow, 0, rows - m_rowsShown);
    QStringList lines = head + page.rows.mid(m_firstRow, m_rowsShown);
    if (m_rowsShown < rows)
        lines += QStringLiteral("rows %1 to %2 of %3; arrows, Page Up and Page Down show the others")
                     .arg(QString::number(m_firstRow + 1), QString::number(m_firstRow + m_rowsShown),
                          QString::number(rows));
    return (lines + foot).mid(0, m_height - 1);
}

bool LiveScreen::isOutdated()
{
    const int formerRow = m_firstRow;
    for (const QByteArray &key : typedKeys())
        takeKey(key);
    return m_firstRow != formerRow || m_width != screenWidth() || m_height != screenHeight();
}

void LiveScreen::takeKey(const QByteArray &key)
{
    const int last = sizeOf(m_page.rows) - m_rowsShown;
    if (key == "\x1b[B" || key == "j")
        ++m_firstRow;
    else if (key == "\x1b[A" || key == "k")
        --m_firstRow;
    else if (key == "\x1b[6~" || key == " ")
        m_firstRow += m_rowsShown;
    else if (key == "\x1b[5~" || key == "b")
        m_firstRow -= m_rowsShown;
    else if (key == "\x1b[H" || key == "\x1b[1~")
        m_firstRow = 0;
    else if (key == "\x1b[F" || key == "\x1b[4~")
        m_firstRow = last;
    m_firstRow = std::clamp(m_firstRow, 0, std::max(last, 0));
}
