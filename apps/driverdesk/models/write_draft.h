#pragma once

#include "apps/driverdesk/worker/ground.h"
#include "apps/driverdesk/worker/write_order.h"

/// What a person is about to write to a row, checked while it is typed.
class WriteDraft
{
public:
    explicit WriteDraft(const PointRow &row);

    /// Why the row cannot be written at all; empty when it can.
    QString problem() const { return m_problem; }
    const Point &point() const { return m_point; }
    QString label() const;
    /// "u16, 0 to 6553.5 bar".
    QString expectedText() const;
    /// How many switches show the value's bits; 0 when they do not make sense.
    int switches() const;
    QString switchName(int bit) const;

    /// The value that a text stands for; the error says what was expected. \a mayRound: to what the type can
    /// hold.
    Result<QByteArray> valueOf(const QString &text, bool mayRound) const;
    /// The text for a value with these bits, and the bits of the text.
    QString textOfBits(quint64 bits) const;
    std::optional<quint64> bitsOf(const QString &text) const;

    WriteOrder order(const QByteArray &value, bool isPreview) const;

private:
    QString rangeText() const;

    Point m_point; // of one value
    int m_station;
    QString m_problem;
};
