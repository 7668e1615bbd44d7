#include "range_scan.h"

#include <algorithm>

namespace
{

// Slaves with small buffers refuse the largest requests; these pass nearly everywhere, and save little less.
const int RegistersAtOnce = 64;
const int BitsAtOnce = 512;

} // namespace

RangeScan::RangeScan(Session &session, const Items &probe) : m_session(session), m_last(probe) {}

int RangeScan::run(int first, int last, const std::function<bool(int)> &mayGoOn)
{
    const int atOnce = m_last.address.isBitArea() ? BitsAtOnce : RegistersAtOnce;
    m_mayGoOn = mayGoOn;
    m_scannedTo = first - 1;
    for (int number = first; number <= last; number += atOnce) {
        if (scan(number, std::min(number + atOnce - 1, last), false) == Answer::Ended)
            break;
    }
    return m_code;
}

// Whether the whole range is there. One that is known to hold a gap is not asked for as a whole.
RangeScan::Answer RangeScan::scan(int first, int last, bool hasGap)
{
    if (!m_mayGoOn(first))
        return Answer::Ended;
    const Answer answer = hasGap ? Answer::Refused : ask(first, last);
    if (answer == Answer::Ended)
        return answer;
    if (answer == Answer::There)
        add(first, last);
    if (answer == Answer::There || first == last) {
        m_scannedTo = last;
        return answer;
    }
    const int middle = first + (last - first) / 2;
    const Answer lower = scan(first, middle, false);
    if (lower == Answer::Ended || scan(middle + 1, last, lower == Answer::There) == Answer::Ended)
        return Answer::Ended;
    return Answer::Refused;
}

RangeScan::Answer RangeScan::ask(int first, int last)
{
    m_last.address.number = first;
    m_last.count = last - first + 1;
    if (m_session.read(m_last))
        return Answer::There;
    if (m_session.failure() == ExceptionReply &&
        !m_session.lastError().startsWith(QLatin1String("exception code:0x01")))
        return Answer::Refused;
    m_code = m_session.failure();
    return Answer::Ended;
}

void RangeScan::add(int first, int last)
{
    if (!m_found.empty() && m_found.back().last == first - 1)
        m_found.back().last = last;
    else
        m_found.push_back({first, last});
}

QStringList RangeScan::found() const
{
    QStringList texts;
    for (const Range &range : m_found) {
        const QString first = m_last.address.areaName + QString::number(range.first);
        texts +=
            range.last == range.first ? first : first + QStringLiteral("..") + QString::number(range.last);
    }
    return texts;
}
