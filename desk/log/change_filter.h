#pragma once

#include <QString>

#include <optional>
#include <vector>

/// Lets pass what has changed since it was last let pass: numbers by more than a deadband, everything else by
/// its text. Failures are a value too, without a text.
class ChangeFilter
{
public:
    explicit ChangeFilter(double deadband) : m_deadband(deadband) {}

    /// Whether value \a index is to be kept.
    bool passes(size_t index, const QString &text, std::optional<double> number);

private:
    struct Last {
        QString text;
        std::optional<double> number;
        bool isKnown = false;
    };
    bool isChange(const Last &last, const QString &text, std::optional<double> number) const;

    double m_deadband;
    std::vector<Last> m_last;
};
