#pragma once

#include "drivers/tools/command_data.h"

#include <QJsonValue>
#include <QString>

#include <optional>

/// How the number of an item is written.
enum class ValueForm { Unsigned, Signed, Hex, Binary, Float };

/// "unsigned", "signed", "hex", "binary", "float", in the order of the enumeration.
QStringList valueFormNames();

/// How many bits an item has: 1, 8, 16 or 32.
int widthOf(ItemKind kind);

QString formatValue(quint32 value, ItemKind kind, ValueForm form);
/// The number itself, whatever its form; null for a float that is no number.
QJsonValue numberOf(quint32 value, ItemKind kind, ValueForm form);

/// Reads a value to be written: in the base of the form, or with "0x" or "0b", negative where it fits; on,
/// off, true and false for bits; a decimal fraction for floats. Otherwise \a error says what would fit.
std::optional<quint32> parseValue(const QString &text, ItemKind kind, ValueForm form, QString &error);
