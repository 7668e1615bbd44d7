#include "desk/live/watched_value.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

const double Gap = std::numeric_limits<double>::quiet_NaN();

const QStringView UnicodeBars(u"▁▂▃▄▅▆▇█");
const QStringView PlainBars(u"_.,-=+*#");

} // namespace

void WatchedValue::add(const ValueRow &row, qint64 now)
{
    m_hasChanged = m_readAt >= 0 && row.value.raw != m_row.value.raw;
    m_row = row;
    m_readAt = now;
    m_isRead = true;
    addToCourse(row.value.number.toDouble(Gap));
}

void WatchedValue::addGap()
{
    m_isRead = false;
    addToCourse(Gap);
}

void WatchedValue::addToCourse(double number)
{
    m_course.push_back(number);
    if (m_course.size() > MaxCourse)
        m_course.pop_front();
}

QString WatchedValue::text(qint64 now) const
{
    return isLive(now) ? shownText() : QStringLiteral("?");
}

QString WatchedValue::shownText() const
{
    return m_row.value.withUnit(m_row.unit);
}

QString WatchedValue::note(qint64 now) const
{
    if (isLive(now))
        return m_row.value.limit;
    if (m_readAt < 0)
        return {};
    return QStringLiteral("was %1 %2 s ago")
        .arg(shownText(), QString::number(static_cast<double>(now - m_readAt) / 1000, 'f', 1));
}

QString WatchedValue::sparkline(bool isUnicode, int length) const
{
    const QStringView bars = isUnicode ? UnicodeBars : PlainBars;
    double lowest = std::numeric_limits<double>::infinity();
    double highest = -lowest;
    for (const double number : m_course) {
        if (!std::isfinite(number))
            continue;
        lowest = std::min(lowest, number);
        highest = std::max(highest, number);
    }
    QString line;
    for (const double number : m_course) {
        const double height = highest > lowest ? (number - lowest) / (highest - lowest) : 0;
        line += std::isfinite(number)
                    ? bars.at(static_cast<int>(std::lround(height * static_cast<double>(bars.size() - 1))))
                    : QLatin1Char(' ');
    }
    return line.right(length);
}
