#pragma once

#include "desk/learning/station_facts.h"
#include "desk/plan/range_scan.h"
#include "desk/refresh/refresh_client.h"
#include "desk/snapshot/comparison.h"

/// Reads what a snapshot is made of, by as few requests as possible: ranges that lie side by side together,
/// as much at once as the slave gives, and parts of what it refuses, down to the addresses that it lacks.
class SnapshotReading : private RefreshClient
{
public:
    /// Asks the slave for bits, or for words; \a data is what the driver gives for them where they are there.
    using Reader = std::function<RangeAnswer(const Items &items, QByteArray &data)>;
    using Watcher = std::function<bool(int done)>;

    explicit SnapshotReading(Reader reader) : m_reader(std::move(reader)) {}

    /// What the ranges hold, in their order; goes on while \a mayGoOn says so, after so many addresses.
    /// Nothing when it did not come to the end.
    std::optional<std::vector<KeptRange>> read(const std::vector<AreaRange> &ranges, const Watcher &mayGoOn);
    /// What was asked for last.
    const Items &lastItems() const { return m_last; }
    /// What the slave may be given at once, seen from what it gives at once.
    RunLimits limits() const;

private:
    // What it has given at once, and whether it refused more.
    struct AtOnce {
        int most = 1;
        bool isLimited = false;
    };

    RangeReply read(const AreaRange &range) override;
    void given(const AreaRange &range, const std::vector<int> &points) override;
    void failed(const AreaRange &range, const std::vector<int> &points) override;
    void notAsked(const Refusals::Refusal &refusal, const std::vector<int> &points) override;

    bool doAllAnswer(const std::vector<AreaRange> &ranges, Learnt &learnt);
    RangeReply::Outcome outcomeOf(RangeAnswer answer, const AreaRange &range) const;
    AtOnce &atOnce(Area area) { return isBitArea(area) ? m_bits : m_registers; }

    Reader m_reader;
    Watcher m_mayGoOn;
    Items m_last;
    QByteArray m_data; // of the last range
    RangeReply m_reply;
    std::vector<std::optional<quint16>> m_values; // by address
    std::vector<AreaRange> m_addresses;
    int m_done = 0;
    bool m_isWhole = true;
    AtOnce m_registers;
    AtOnce m_bits;
};
