#pragma once

#include "desk/plan/range_scan.h"
#include "desk/snapshot/comparison.h"

/// Reads what a snapshot is made of: as much at once as the slave gives, and halves of what it refuses, down
/// to the addresses that it lacks.
class SnapshotReading
{
public:
    /// Asks the slave for bits, or for words; \a data is what the driver gives for them where they are there.
    using Reader = std::function<RangeAnswer(const Items &items, QByteArray &data)>;

    explicit SnapshotReading(Reader reader) : m_reader(std::move(reader)) {}

    /// What a range of one station holds; goes on while \a mayGoOn says so, number by number. Nothing when it
    /// did not come to the end.
    std::optional<KeptRange> read(const AreaRange &range, const std::function<bool(int number)> &mayGoOn);
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

    static void note(RangeAnswer answer, int count, AtOnce &atOnce);
    RangeAnswer keep(const Items &items, KeptRange &kept);

    Reader m_reader;
    Items m_last;
    AtOnce m_registers;
    AtOnce m_bits;
};
