#pragma once

#include "desk/result.h"
#include "desk/types/value_parse.h"

/// How the number in the registers becomes what people read: value = raw * scale + offset.
struct Scaling {
    double scale = 1;
    double offset = 0;
    int decimals = 0; ///< that whole numbers get

    bool isNeutral() const { return scale == 1 && offset == 0; }
};

/// Reads both; an empty text stands for none. The error says what was expected.
Result<Scaling> parseScaling(const QString &scale, const QString &offset);
/// A decimal number, with a point or, where a comma is no separator, with a comma.
std::optional<double> parseNumberText(const QString &text);

/// The scaled value as text: with the decimals of scale and offset for whole numbers, with as many digits
/// as the type has for floats. The value must be a number.
QString scaledText(const QByteArray &value, const ValueType &type, const Scaling &scaling);
/// The value of \a type that is shown as \a text: what parseValue() does, and back through the scaling.
Result<QByteArray> parseScaled(const QString &text, const ValueType &type, const Scaling &scaling,
                               const ValueParsing &parsing);
