#pragma once

#include "desk/result.h"

#include <QStringList>

#include <map>
#include <optional>

/// Names for the values of a point, "0=stopped;1=running", or for the single bits of its word,
/// "0:ready;3:fault".
class States
{
public:
    bool isEmpty() const { return m_names.empty(); }
    bool isOfBits() const { return m_isOfBits; }

    /// The name of the value; the names of the bits that are set, "-" when none is. Empty for a value
    /// without one.
    QString nameOf(qint64 value) const;
    /// The value with this name; nothing when there is none, and for bits.
    std::optional<qint64> valueOf(const QString &name) const;
    QStringList names() const;

    /// Reads states for numbers of \a bits bits; the error says what was expected.
    static Result<States> parse(const QString &text, int bits);

private:
    std::map<qint64, QString> m_names;
    bool m_isOfBits = false;
};
