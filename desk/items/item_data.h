#pragma once

#include "desk/items/items.h"

#include <QByteArray>

#include <vector>

/// The driver's data and the numbers in it; one number an item, in its low bits.

/// Item \a position of the driver's data, which must hold it.
quint32 valueAt(const QByteArray &data, ItemKind kind, int position);
/// The values of \a items in the driver's data, which must hold them all.
std::vector<quint32> valuesIn(const QByteArray &data, const Items &items);
/// The data by which the driver writes the values.
QByteArray dataOf(const std::vector<quint32> &values, ItemKind kind);
