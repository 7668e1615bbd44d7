#pragma once

#include <QString>

#include <vector>

namespace kit
{

/// What belongs to the process and so to the host: locale, directory, environment, signals, file mode mask,
/// rounding.
class ProcessState
{
public:
    /// As it is now.
    ProcessState();

    /// What is another in \a later, a line each.
    std::vector<QString> changesTo(const ProcessState &later) const;

private:
    struct Property {
        QString name;
        QString value;
    };
    void add(const QString &name, const QString &value);

    std::vector<Property> m_properties;
};

} // namespace kit
