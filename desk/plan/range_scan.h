#pragma once

#include "desk/items/items.h"

#include <functional>
#include <vector>

/// What a slave said to a request for a range.
enum class RangeAnswer {
    There,   ///< it has all of it
    Missing, ///< it lacks some of it
    TooMany, ///< it does not give as much at once
    None     ///< no answer to go on with; the scan ends
};

/// Finds which addresses of an area a slave has, by reading ranges and halving those that it refuses.
class RangeScan
{
public:
    using Reader = std::function<RangeAnswer(const Items &)>;

    /// \a probe has the station, the area and the kind; \a reader asks the slave.
    RangeScan(const Items &probe, Reader reader);

    /// Scans the numbers \a first to \a last; goes on while \a mayGoOn says so. False when it did not come to
    /// the end.
    bool run(int first, int last, const std::function<bool(int number)> &mayGoOn);

    /// "HR1..100", in rising order.
    QStringList found() const;
    /// The last number of which it is known whether it exists.
    int scannedTo() const { return m_scannedTo; }
    const Items &lastItems() const { return m_last; }

private:
    RangeAnswer scan(int first, int last, bool isMissingSome);
    RangeAnswer halve(int first, int last, bool isMissingSome);
    RangeAnswer ask(int first, int last);
    void add(int first, int last);

    struct Range {
        int first;
        int last;
    };

    Items m_last;
    Reader m_reader;
    std::function<bool(int)> m_mayGoOn;
    std::vector<Range> m_found;
    int m_atOnce = 1;
    int m_scannedTo = 0;
};
