#pragma once

#include "desk/items/address.h"
#include "drivers/tools/command_data.h"

/// The driver's kinds of items, by name and by size.

/// "bit", "byte", "word", "dword", "block", "bit2"; nothing for other texts.
std::optional<ItemKind> kindNamed(const QString &name);
QString nameOf(ItemKind kind);
/// The kind that an address suggests: bits, or words for whole registers.
ItemKind defaultKind(const Address &address);
bool isBitKind(ItemKind kind);
bool isByteKind(ItemKind kind);
/// How many bits an item has: 1, 8, 16 or 32.
int widthOf(ItemKind kind);
