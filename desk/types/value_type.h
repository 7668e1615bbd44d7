#pragma once

#include "desk/result.h"

/// What the bits of a value mean.
enum class Meaning { Bit, Unsigned, Signed, Float, Hex, Binary, Bcd, Text };

/// What a value is: what its bits mean, and how many there are. A value itself is bytes, the most significant
/// one first; a bit is a byte of 0 or 1; a text is padded with zeros.
struct ValueType {
    Meaning meaning = Meaning::Unsigned;
    int bits = 16;

    bool isBit() const { return meaning == Meaning::Bit; }
    bool isText() const { return meaning == Meaning::Text; }
    /// Two of them share a register.
    bool isByte() const { return bits == 8 && !isText(); }
    int bytes() const { return (bits + 7) / 8; }
    /// How many registers one value takes, or shares.
    int registers() const { return (bytes() + 1) / 2; }
};

inline bool operator==(const ValueType &left, const ValueType &right)
{
    return left.meaning == right.meaning && left.bits == right.bits;
}

/// The maximum of a text, in bytes: what one request reads.
const int MaxTextBytes = 250;

/// Reads "u16", "f32", "str7" or a longer name such as "float"; capital letters are as good. The error lists
/// what is expected.
Result<ValueType> parseType(const QString &name);
/// The shortest name that parseType() takes.
QString nameOf(const ValueType &type);
