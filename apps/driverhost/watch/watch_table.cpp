#include "apps/driverhost/watch/watch_table.h"

#include "desk/output/table.h"
#include "drivers/qt/qt_lines.h"

#include <algorithm>

namespace
{

const qint64 Millisecond = 1000; // in microseconds

QString millisecondsText(qint64 microseconds)
{
    return microseconds < 0 ? QString()
                            : QString::number(static_cast<double>(microseconds) / Millisecond, 'f', 1);
}

QStringList eachOnce(QStringList texts)
{
    texts.removeAll(QString());
    texts.removeDuplicates();
    return texts;
}

int longestOf(const QStringList &lines)
{
    int longest = 0;
    for (const QString &line : lines)
        longest = std::max(longest, sizeOf(line));
    return longest;
}

} // namespace

WatchTable::WatchTable(const std::vector<Reading> &readings, qint64 lifetime)
    : m_readings(readings), m_states(readings.size())
{
    for (size_t i = 0; i < readings.size(); ++i) {
        m_states[i].values.resize(readings[i].shown.size(), WatchedValue(lifetime));
        for (const Reading::Shown &shown : readings[i].shown)
            m_hasNames = m_hasNames || !shown.point->name.isEmpty();
    }
}

void WatchTable::add(size_t reading, const std::vector<ValueRow> &rows, qint64 now)
{
    State &state = m_states[reading];
    for (size_t i = 0; i < rows.size(); ++i) {
        state.values[i].add(rows[i], now);
        state.latency = rows[i].latency;
        state.duration = rows[i].duration;
        state.attempts = rows[i].attempts;
    }
    state.error.clear();
    state.advice.clear();
}

void WatchTable::addFailure(size_t reading, const std::vector<ValueRow> &rows, const QString &error)
{
    State &state = m_states[reading];
    for (WatchedValue &value : state.values)
        value.addGap();
    for (const ValueRow &row : rows) {
        state.duration = row.duration;
        state.attempts = row.attempts;
        state.advice = row.failure ? row.failure->advice : QString();
    }
    ++state.errors;
    state.error = error;
}

QStringList WatchTable::lines(qint64 now, int width, bool isUnicode) const
{
    Table table({m_hasNames ? QStringLiteral("name") : QStringLiteral("address"), QStringLiteral("value"),
                 QString(), QStringLiteral("reply ms"), QStringLiteral("total ms"),
                 QStringLiteral("attempts"), QStringLiteral("errors"), QString()},
                {1, 3, 4, 5, 6});
    QStringList courses{QStringLiteral("course")};
    for (size_t i = 0; i < m_states.size(); ++i) {
        for (size_t j = 0; j < m_states[i].values.size(); ++j) {
            const WatchedValue &value = m_states[i].values[j];
            table.addRow(cells(labelOf(m_readings[i].shown[j]), m_states[i], value, now));
            courses += value.sparkline(isUnicode);
        }
    }
    QStringList lines = table.lines();
    // The newest readings stand at the right, and must not be cut off.
    const int left = longestOf(lines) + 2;
    for (int i = 0; i < lines.size(); ++i) {
        const int room = std::max(width - left, 0);
        const QString course = i == 0 ? courses.at(i).left(room) : courses.at(i).right(room);
        if (!course.isEmpty())
            lines[i] = lines.at(i).leftJustified(left) + course;
        lines[i].truncate(width);
    }
    return lines;
}

QStringList WatchTable::cells(const QString &label, const State &state, const WatchedValue &value,
                              qint64 now) const
{
    const bool isLive = value.isLive(now);
    return {label,
            value.text(now),
            isLive && value.hasChanged() ? QStringLiteral("*") : QString(),
            isLive ? millisecondsText(state.latency) : QString(),
            millisecondsText(state.duration),
            state.attempts == 0 ? QString() : QString::number(state.attempts),
            QString::number(state.errors),
            value.note(now)};
}

QStringList WatchTable::errors() const
{
    QStringList errors;
    for (const State &state : m_states)
        errors += state.error;
    return eachOnce(errors);
}

QStringList WatchTable::advices() const
{
    QStringList advices;
    for (const State &state : m_states)
        advices += state.advice;
    return eachOnce(advices);
}

QString WatchTable::legend(bool isUnicode)
{
    return QStringLiteral("course: the last %1 rounds, %2, blank not read")
        .arg(QString::number(WatchedValue::MaxCourse),
             isUnicode ? QStringLiteral("▁ lowest to █ highest") : QStringLiteral("_ lowest to # highest"));
}
