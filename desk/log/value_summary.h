#pragma once

#include <cstdint>
#include <limits>

/// The smallest, the largest and the mean of a value that was read again and again.
class ValueSummary
{
public:
    void add(double number);

    std::uint64_t count() const { return m_count; }
    double min() const { return m_min; }
    double max() const { return m_max; }
    double mean() const { return m_mean; }

private:
    std::uint64_t m_count = 0;
    double m_min = std::numeric_limits<double>::infinity();
    double m_max = -std::numeric_limits<double>::infinity();
    double m_mean = 0;
};
