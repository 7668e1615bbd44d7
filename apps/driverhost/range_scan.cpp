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
    m_atOnce = m_last.address.isBitArea() ? BitsAtOnce : RegistersAtOnce;
    m_mayGoOn = mayGoOn;
    m_scannedTo = first - 1;
    while (m_scannedTo < last) {
        const int number = m_scannedTo + 1;
        if (scan(number, std::min(number + m_atOnce - 1, last), false) == Answer::Ended)
            break;
    }
    return m_code;
}

// Whether the whole range is there. One that is known to hold a gap, or that is more than the slave gives at
// once, is not asked for as a whole.
RangeScan::Answer RangeScan::scan(int first, int last, bool hasGap)
{
    if (!m_mayGoOn(first))
        return Answer::Ended;
    const bool isOne = first == last;
    Answer answer = hasGap ? Answer::Gap : Answer::TooMany;
    if (isOne || (!hasGap && last - first < m_atOnce))
        answer = ask(first, last);
    if (answer == Answer::There)
        add(first, last);
    if (answer == Answer::There || (isOne && answer != Answer::Ended))
        m_scannedTo = last;
    else if (answer != Answer::Ended)
        return halve(first, last, answer == Answer::Gap);
    return answer;
}

RangeScan::Answer RangeScan::halve(int first, int last, bool hasGap)
{
    const int middle = first + (last - first) / 2;
    const Answer lower = scan(first, middle, false);
    if (lower == Answer::Ended)
        return lower;
    const Answer upper = scan(middle + 1, last, hasGap && lower == Answer::There);
    if (upper == Answer::Ended)
        return upper;
    return lower == Answer::There ? upper : Answer::Gap;
}

RangeScan::Answer RangeScan::ask(int first, int last)
{
    m_last.address.number = first;
    m_last.count = last - first + 1;
    if (m_session.read(m_last))
        return Answer::There;
    if (m_session.failure() == ExceptionReply)
        return refusal(m_last.count);
    m_code = m_session.failure();
    return Answer::Ended;
}

// Exception 3 may mean "too many at once": that says nothing about the addresses, but not to ask for as many
// again.
RangeScan::Answer RangeScan::refusal(int count)
{
    const QString text = m_session.lastError();
    for (const char *code : {"0x01", "0x06", "0x0A", "0x0B"}) {
        if (text.startsWith(QLatin1String("exception code:") + QLatin1String(code), Qt::CaseInsensitive)) {
            m_code = ExceptionReply;
            return Answer::Ended;
        }
    }
    if (!text.startsWith(QLatin1String("exception code:0x03")) || count == 1)
        return Answer::Gap;
    m_atOnce = std::min(m_atOnce, (count + 1) / 2);
    return Answer::TooMany;
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
