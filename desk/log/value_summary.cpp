#include "desk/log/value_summary.h"

#include <algorithm>

// The mean moves by what is new, so that a year of values sums up no rounding errors.
void ValueSummary::add(double number)
{
    ++m_count;
    m_min = std::min(m_min, number);
    m_max = std::max(m_max, number);
    m_mean += (number - m_mean) / static_cast<double>(m_count);
}
