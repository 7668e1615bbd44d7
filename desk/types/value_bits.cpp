#include "desk/types/value_bits.h"

#include <array>
#include <charconv>
#include <cstring>

namespace
{

const int BitsOfDigit = 4;
const size_t MaxExactSize = 1100; // of the digits of a double
const int ExactDigits = 766;      // after the first

template <typename To, typename From>
To sameBits(From from)
{
    static_assert(sizeof(To) == sizeof(From), "a float is as wide as its bits");
    To to = 0;
    std::memcpy(&to, &from, sizeof to);
    return to;
}

template <typename Float, typename Bits>
std::optional<QByteArray> nearest(const QByteArray &text)
{
    Float number = 0;
    const char *const end = text.constData() + text.size();
    const std::from_chars_result read = std::from_chars(text.constData(), end, number);
    if (read.ec != std::errc() || read.ptr != end)
        return std::nullopt;
    return valueOf(sameBits<Bits>(number), sizeof number);
}

template <typename Float, typename... Form>
QByteArray textOf(Float number, Form... form)
{
    std::array<char, MaxExactSize> text = {};
    const std::to_chars_result end = std::to_chars(text.data(), text.data() + text.size(), number, form...);
    return QByteArray(text.data(), static_cast<int>(end.ptr - text.data()));
}

float singleOf(const QByteArray &value)
{
    return sameBits<float>(static_cast<quint32>(bitsOf(value)));
}

double doubleOf(const QByteArray &value)
{
    return sameBits<double>(bitsOf(value));
}

bool isSingle(const QByteArray &value)
{
    return value.size() == sizeof(float);
}

} // namespace

quint64 bitsOf(const QByteArray &value)
{
    quint64 bits = 0;
    for (const char byte : value)
        bits = bits << 8 | static_cast<unsigned char>(byte);
    return bits;
}

QByteArray valueOf(quint64 bits, int bytes)
{
    QByteArray value(bytes, '\0');
    for (int i = bytes - 1; i >= 0; --i, bits >>= 8)
        value[i] = static_cast<char>(bits & 0xFF);
    return value;
}

double floatOf(const QByteArray &value)
{
    return isSingle(value) ? double(singleOf(value)) : doubleOf(value);
}

std::optional<QByteArray> nearestFloat(const QByteArray &text, int bytes)
{
    const bool hasPlus = text.startsWith('+') && !text.startsWith("+-");
    const QByteArray number = hasPlus ? text.mid(1) : text;
    return bytes == sizeof(float) ? nearest<float, quint32>(number) : nearest<double, quint64>(number);
}

QByteArray shortestText(const QByteArray &value)
{
    return isSingle(value) ? textOf(singleOf(value)) : textOf(doubleOf(value));
}

QByteArray exactText(const QByteArray &value)
{
    return textOf(floatOf(value), std::chars_format::scientific, ExactDigits);
}

qint64 signedOf(quint64 bits, int width)
{
    const int unused = 64 - width;
    return static_cast<qint64>(bits << unused) >> unused;
}

std::optional<quint64> numberOfBcd(quint64 bits)
{
    quint64 number = 0;
    for (int shift = 64 - BitsOfDigit; shift >= 0; shift -= BitsOfDigit) {
        const quint64 digit = bits >> shift & 0xF;
        if (digit > 9)
            return std::nullopt;
        number = number * 10 + digit;
    }
    return number;
}

quint64 bcdOf(quint64 number)
{
    quint64 bits = 0;
    for (int shift = 0; number != 0; shift += BitsOfDigit, number /= 10)
        bits |= number % 10 << shift;
    return bits;
}
