#include "desk/link/line_counts.h"

#include "desk/wire/rtu_frame.h"

namespace
{

quint64 unsignedOf(int number)
{
    return static_cast<quint64>(number);
}

// Nobody was to reply.
bool isBroadcast(const Exchange &exchange)
{
    return byteAt(exchange.request, 0) == modbus::BroadcastStation;
}

} // namespace

void LineCounts::add(const CommandRecord &record, bool hasConnectedBefore)
{
    // What the driver refuses itself never comes to the line.
    requests += record.attempts() > 0 ? 1 : 0;
    attempts += unsignedOf(record.attempts());
    withheld += unsignedOf(record.withheld());
    const bool isFirst = !hasConnectedBefore && record.openings() > 0;
    reconnects += unsignedOf(record.openings()) - (isFirst ? 1 : 0);
    failedOpenings += unsignedOf(record.failedOpenings());
    endsByOther += unsignedOf(record.endsByOther());
    skippedBytes += unsignedOf(record.skippedBytes());
    discardedBytes += unsignedOf(record.discardedBytes());
    for (const Exchange &exchange : record.exchanges())
        addOutcome(exchange);
}

void LineCounts::addOutcome(const Exchange &exchange)
{
    switch (outcomeOf(exchange)) {
    case Outcome::Silence: timeouts += isBroadcast(exchange) ? 0 : 1; break;
    case Outcome::Cut: ++cutReplies; break;
    case Outcome::CrcError: ++crcErrors; break;
    case Outcome::OtherStation:
    case Outcome::OtherFunction: ++wrongReplies; break;
    case Outcome::Exception: ++exceptions[exceptionIn(exchange)]; break;
    case Outcome::Good:
    case Outcome::ConnectionEnded:
    case Outcome::GivenUp: break;
    }
}

void LinkCounts::add(const CommandRecord &record)
{
    m_total.add(record, m_hasConnected);
    m_stations[record.station()].add(record, m_hasConnected);
    m_hasConnected = m_hasConnected || record.openings() > 0;
}
