#pragma once

#include "desk/items/item_kind.h"
#include "desk/types/value_type.h"

#include <QByteArray>
#include <QStringList>

/// How the number of an item without a type is written.
enum class ValueForm { Unsigned, Signed, Hex, Binary, Float };

/// "unsigned", "signed", "hex", "binary", "float", in the order of the enumeration.
QStringList valueFormNames();

/// The type of values that are as wide as the kind and are written in the form. A bit is a bit in any form.
ValueType typeOf(ItemKind kind, ValueForm form);

/// Reads a value to be written: in the base of the form, or with "0x" or "0b", negative where it fits; on,
/// off, true and false for bits; a decimal fraction for floats. The error says what would fit.
Result<QByteArray> parseValue(const QString &text, ItemKind kind, ValueForm form);
