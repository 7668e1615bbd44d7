#pragma once

#include "desk/learning/request_cost.h"

#include <array>
#include <optional>
#include <vector>

/// Learns from requests what they cost. One that took far longer than the others, for whatever reason,
/// changes nothing. Needs no more memory however long it learns.
class CostLearner
{
public:
    /// Lengths of replies, in units, both included.
    struct Lengths {
        int shortest;
        int longest;

        bool operator==(const Lengths &other) const
        {
            return shortest == other.shortest && longest == other.longest;
        }
    };

    /// Goes by \a start until requests of different length have been seen.
    explicit CostLearner(const RequestCost &start) : m_start(start), m_cost(start) {}

    /// A request whose reply had so many units took so long.
    void add(int units, double microseconds);

    const RequestCost &cost();
    /// Lengths that would tell more than those seen; nothing once what a request costs can be told from what
    /// its units cost, even if one of the times is far out.
    std::optional<Lengths> wantedLengths();
    bool hasMeasured() const { return m_isRestored || m_count > 0; }
    bool isKnown() { return m_isRestored || (m_count > 0 && !wantedLengths()); }

    /// What was learnt before: it stands until it is learnt anew.
    void restore(const RequestCost &cost);
    /// Goes by \a start, in proportion, as long as it does not know better.
    void setStart(const RequestCost &start);

private:
    struct Sample {
        int units;
        double microseconds;
        quint64 number;
    };

    static const size_t BucketCount = 9;
    static const size_t BucketSize = 7;

    void fit();
    void fitBoth(const std::vector<Sample> &samples);
    void fitInProportion(const std::vector<Sample> &samples);
    std::vector<Sample> goodSamples() const;
    std::optional<Lengths> wantedBeside(const std::vector<Sample> &samples) const;

    RequestCost m_start;
    RequestCost m_cost;
    /// By length, in each the lengths up to twice those of the one before.
    std::array<std::vector<Sample>, BucketCount> m_buckets;
    quint64 m_count = 0;
    quint64 m_fitAt = 0;
    bool m_isRestored = false;
    std::optional<Lengths> m_wanted;
};
