#include "desk/log/change_filter.h"

#include <cmath>

bool ChangeFilter::passes(size_t index, const QString &text, std::optional<double> number)
{
    if (m_last.size() <= index)
        m_last.resize(index + 1);
    Last &last = m_last[index];
    if (last.isKnown && !isChange(last, text, number))
        return false;
    last = {text, number, true};
    return true;
}

bool ChangeFilter::isChange(const Last &last, const QString &text, std::optional<double> number) const
{
    if (last.number && number && m_deadband > 0)
        return std::abs(*number - *last.number) > m_deadband;
    return text != last.text;
}
