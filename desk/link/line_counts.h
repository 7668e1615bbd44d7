#pragma once

#include "desk/link/command_record.h"

#include <map>

/// What happened on a line.
struct LineCounts {
    quint64 requests = 0;   ///< commands of the driver for which the line was needed
    quint64 attempts = 0;   ///< how often they were tried
    quint64 withheld = 0;   ///< attempts that were not sent, since the line was not settled
    quint64 timeouts = 0;   ///< nothing came
    quint64 cutReplies = 0; ///< the reply stopped short
    quint64 crcErrors = 0;
    quint64 wrongReplies = 0;          ///< another station's, or to another function
    std::map<int, quint64> exceptions; ///< by code
    quint64 failedOpenings = 0;        ///< no connection
    quint64 reconnects = 0;            ///< connections after the first
    quint64 endsByOther = 0;           ///< connections that the other side closed or reset
    quint64 skippedBytes = 0;          ///< came in front of replies
    quint64 discardedBytes = 0;        ///< came unasked

    quint64 retries() const { return attempts - requests; }

    /// Counts \a record; \a hasConnectedBefore: its first connection is not the line's first.
    void add(const CommandRecord &record, bool hasConnectedBefore);

private:
    void addOutcome(const Exchange &exchange);
};

/// The same in total and for each station.
class LinkCounts
{
public:
    void add(const CommandRecord &record);

    const LineCounts &total() const { return m_total; }
    const std::map<int, LineCounts> &stations() const { return m_stations; }

private:
    LineCounts m_total;
    std::map<int, LineCounts> m_stations;
    bool m_hasConnected = false;
};
