#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// A decimal number exactly as it is written, which no binary one can be: digits without zeros at either end,
/// times a power of ten. Zero has no digits.
struct Decimal {
    bool isNegative = false;
    QByteArray digits;
    int exponent = 0;

    bool isZero() const { return digits.isEmpty(); }
    bool isWhole() const { return exponent >= 0; }
};

bool operator==(const Decimal &left, const Decimal &right);

/// Reads "-12.5" or "1.25e1"; nothing for other texts, and for exponents above 9999.
std::optional<Decimal> parseDecimal(const QString &text);

/// The nearest whole number, halves away from zero.
Decimal rounded(const Decimal &number);
/// The digits of a whole number without its sign; nothing when 64 bits do not hold them.
std::optional<quint64> magnitudeOf(const Decimal &whole);
