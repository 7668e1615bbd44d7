#include "desk/plan/range_scan.h"

#include <QStringList>

#include <algorithm>
#include <utility>

namespace
{

// Slaves with small buffers refuse requests of the maximum size; these pass nearly everywhere, and save
// little less.
const int RegistersAtOnce = 64;
const int BitsAtOnce = 512;

} // namespace

RangeScan::RangeScan(const Items &probe, Reader reader) : m_last(probe), m_reader(std::move(reader)) {}

bool RangeScan::run(int first, int last, const std::function<bool(int)> &mayGoOn)
{
    m_atOnce = m_last.address.isBitArea() ? BitsAtOnce : RegistersAtOnce;
    m_mayGoOn = mayGoOn;
    m_scannedTo = first - 1;
    while (m_scannedTo < last) {
        const int number = m_scannedTo + 1;
        if (scan(number, std::min(number + m_atOnce - 1, last), false) == RangeAnswer::None)
            return false;
    }
    return true;
}

// Whether the whole range is there. One that is known to miss some, or that is more than the slave gives at
// once, is not asked for as a whole.
RangeAnswer RangeScan::scan(int first, int last, bool isMissingSome)
{
    if (!m_mayGoOn(first))
        return RangeAnswer::None;
    const bool isOne = first == last;
    RangeAnswer answer = isMissingSome ? RangeAnswer::Missing : RangeAnswer::TooMany;
    if (isOne || (!isMissingSome && last - first < m_atOnce))
        answer = ask(first, last);
    if (answer == RangeAnswer::There)
        add(first, last);
    if (answer == RangeAnswer::There || (isOne && answer != RangeAnswer::None))
        m_scannedTo = last;
    else if (answer != RangeAnswer::None)
        return halve(first, last, answer == RangeAnswer::Missing);
    return answer;
}

RangeAnswer RangeScan::halve(int first, int last, bool isMissingSome)
{
    const int middle = first + (last - first) / 2;
    const RangeAnswer lower = scan(first, middle, false);
    if (lower == RangeAnswer::None)
        return lower;
    const RangeAnswer upper = scan(middle + 1, last, isMissingSome && lower == RangeAnswer::There);
    if (upper == RangeAnswer::None)
        return upper;
    return lower == RangeAnswer::There ? upper : RangeAnswer::Missing;
}

// "Too many at once" says nothing about the addresses, but not to ask for as many again; of one address it
// says that this one is missing.
RangeAnswer RangeScan::ask(int first, int last)
{
    m_last.address.number = first;
    m_last.count = last - first + 1;
    const RangeAnswer answer = m_reader(m_last);
    if (answer != RangeAnswer::TooMany)
        return answer;
    if (m_last.count == 1)
        return RangeAnswer::Missing;
    m_atOnce = std::min(m_atOnce, (m_last.count + 1) / 2);
    return answer;
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
