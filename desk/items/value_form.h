#pragma once

#include "desk/items/item_kind.h"

#include <QJsonValue>
#include <QStringList>

/// How the number of an item is written.
enum class ValueForm { Unsigned, Signed, Hex, Binary, Float };

/// "unsigned", "signed", "hex", "binary", "float", in the order of the enumeration.
QStringList valueFormNames();

QString formatValue(quint32 value, ItemKind kind, ValueForm form);
/// The number itself, whatever its form; null for a float that is no number.
QJsonValue numberOf(quint32 value, ItemKind kind, ValueForm form);

/// Reads a value to be written: in the base of the form, or with "0x" or "0b", negative where it fits; on,
/// off, true and false for bits; a decimal fraction for floats. The error says what would fit.
Result<quint32> parseValue(const QString &text, ItemKind kind, ValueForm form);
