#pragma once

#include "desk/items/area_range.h"

#include <vector>

/// Learns how many items a station gives at once, where that is fewer than the protocol allows.
class CountLimit
{
public:
    explicit CountLimit(int protocolMaximum) : m_maximum(protocolMaximum) {}

    /// A request for so many was answered.
    void addGiven(int count);
    /// The range was refused, and perhaps for its length alone. False when that cannot be: as many were
    /// given.
    bool addRefused(const AreaRange &range);
    /// An address was found that is not there: ranges that hold it were refused for that.
    void addHole(const AreaRange &hole);

    /// The largest count that was answered.
    int given() const { return m_given; }
    /// The smallest count that is known to be refused; one more than the protocol's maximum if none is.
    int refused() const;
    /// Whether anything was refused for its length.
    bool hasRefused() const { return refused() <= m_maximum; }
    /// Whether it is known; without any refusal it is the protocol's.
    bool isExact() const { return !hasRefused() || refused() == m_given + 1; }
    /// What to ask for at most, to find out soon where between the two the limit lies.
    int attempt() const;

    void restore(int given, int refused);

private:
    int m_maximum;
    int m_given = 0;
    int m_restoredRefused = 0; // 0: none
    std::vector<AreaRange> m_refused;
};
