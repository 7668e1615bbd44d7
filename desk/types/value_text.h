#pragma once

#include "desk/types/value_type.h"

#include <QByteArray>
#include <QJsonValue>

#include <optional>

/// Values as people and programs read them. A value has the bytes that its type says.

enum class TextEncoding { Latin1, Utf8 };

/// The value as people write it. What is no number of its type is shown in hexadecimal digits; characters of
/// a text that would move a terminal's cursor as "\x0A".
QString textOf(const QByteArray &value, const ValueType &type, TextEncoding encoding = TextEncoding::Latin1);
/// The value as a number; nothing for texts, for what is not BCD, and for a float that is no number.
std::optional<double> numberOf(const QByteArray &value, const ValueType &type);
/// The value for JSON: a number, a text, null where there is no number, and a text of digits for whole
/// numbers above 2^63 - 1, which JSON's readers would round.
QJsonValue jsonOf(const QByteArray &value, const ValueType &type,
                  TextEncoding encoding = TextEncoding::Latin1);

/// A text as bytes of a string from a slave: up to the first zero.
QString stringOf(const QByteArray &value, TextEncoding encoding);
