#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>

namespace fuzz
{

/// One input, taken from its front; zeros follow its end. Seeds are written by hand in this order.
class Input
{
public:
    Input(const std::uint8_t *begin, std::size_t size) : next(begin), end(begin + size) {}

    bool isEmpty() const { return next == end; }
    int left() const { return static_cast<int>(end - next); }
    std::uint8_t byte() { return isEmpty() ? std::uint8_t(0) : *next++; }

    /// From -128 to 127.
    int signedByte()
    {
        const int value = byte();
        return value < 0x80 ? value : value - 0x100;
    }

    std::uint16_t word()
    {
        const unsigned int high = byte();
        return static_cast<std::uint16_t>(high << 8 | byte());
    }

    std::uint32_t doubleWord()
    {
        const std::uint32_t high = word();
        return high << 16 | word();
    }

    /// At most \a size bytes, fewer at the end.
    QByteArray bytes(int size)
    {
        const int taken = qMin(size, left());
        QByteArray result(reinterpret_cast<const char *>(next), taken);
        next += taken;
        return result;
    }

    QByteArray rest() { return bytes(left()); }

private:
    const std::uint8_t *next;
    const std::uint8_t *end;
};

} // namespace fuzz
