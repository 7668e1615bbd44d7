#pragma once

#include <QByteArray>

#include <optional>

/// Bytes, the most significant one first, and the number that they are.
quint64 bitsOf(const QByteArray &value);
QByteArray valueOf(quint64 bits, int bytes);

/// The same as floats: 4 bytes, or 8.
double floatOf(const QByteArray &value);
/// The float of so many bytes that is nearest to a decimal number, "inf" or "nan"; nothing for other texts,
/// and for numbers beyond the largest and below the smallest float.
std::optional<QByteArray> nearestFloat(const QByteArray &text, int bytes);
/// The shortest text that reads back as the same float.
QByteArray shortestText(const QByteArray &value);
/// All digits of the float, which must be finite.
QByteArray exactText(const QByteArray &value);

/// The signed number in the lowest \a width bits.
qint64 signedOf(quint64 bits, int width);

/// The number whose decimal digits are the hexadecimal digits of \a bits; nothing when there are others.
std::optional<quint64> numberOfBcd(quint64 bits);
/// Its reverse, for numbers of at most 16 digits.
quint64 bcdOf(quint64 number);
