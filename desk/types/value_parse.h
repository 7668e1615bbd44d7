#pragma once

#include "desk/types/value_text.h"

/// How strictly a text is taken for a value.
struct ValueParsing {
    TextEncoding encoding = TextEncoding::Latin1;
    bool mayRound = false; ///< to what the type can hold, when that is less exact than the text
};

/// Reads a value of \a type. Numbers are decimal, or hexadecimal with "0x", binary with "0b"; types in
/// hexadecimal or binary digits are read so without a prefix as well; bits are also on, off, true and false.
/// The error says what would fit; nothing is cut or wrapped around.
Result<QByteArray> parseValue(const QString &text, const ValueType &type, const ValueParsing &parsing = {});
