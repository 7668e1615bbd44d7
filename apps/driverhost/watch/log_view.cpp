#include "apps/driverhost/watch/log_view.h"

#include "apps/driverhost/console/messages.h"
#include "desk/items/number_text.h"
#include "drivers/qt/qt_lines.h"

#include <QDateTime>

#include <csignal>

LogView::LogView(const std::vector<Reading> &readings, const WatchLog &log)
    : m_log(log), m_series(readings, log.form), m_file(log.path, m_series.titles(), log.rotation)
{
}

bool LogView::finish()
{
    if (!m_lines.isEmpty())
        keep(m_lines);
    if (m_lost > 0)
        report(QStringLiteral("%1: %2 not kept").arg(m_log.path, counted(m_lost, "line")));
    return m_lost == 0;
}

// A file at the largest size that it may have is to fail as on a full disk, not to end the program.
Result<> LogView::open()
{
    std::signal(SIGXFSZ, SIG_IGN);
    return m_file.open(QDateTime::currentDateTime());
}

bool LogView::add(size_t reading, const std::vector<ValueRow> &rows)
{
    m_lines += m_series.add(reading, rows);
    return true;
}

bool LogView::addFailure(size_t reading, const std::vector<ValueRow> &rows, const QString & /*error*/)
{
    return add(reading, rows);
}

bool LogView::endRound()
{
    m_lines += m_series.endRound();
    if (!m_lines.isEmpty())
        keep(m_lines);
    m_lines.clear();
    return true;
}

void LogView::keep(const QStringList &lines)
{
    const Result<> kept = m_file.append(lines, QDateTime::currentDateTime());
    if (!kept) {
        m_lost += sizeOf(lines);
        if (m_trouble.isEmpty())
            report(QStringLiteral("%1; nothing is kept until that is over").arg(kept.errorText()));
    } else if (!m_trouble.isEmpty()) {
        report(QStringLiteral("%1: kept again").arg(m_log.path));
    }
    m_trouble =
        kept ? QString() : QStringLiteral("%1; %2 not kept").arg(kept.errorText(), counted(m_lost, "line"));
}
