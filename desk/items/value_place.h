#pragma once

#include "desk/items/area_range.h"
#include "desk/items/typed_items.h"

/// Where in data from the driver a value lies: bits as the driver packs them, or registers with their low
/// bytes first.
struct ValuePlace {
    ValueType type;
    ByteOrder order;  ///< in the data
    int position = 0; ///< of its first bit, or of its first register's or byte's
};

/// The value there; the data must hold it.
QByteArray valueAt(const QByteArray &data, const ValuePlace &place);

/// Where the values lie in the data that the driver reads for their items.
std::vector<ValuePlace> placesOf(const TypedItems &typed);
/// All of them; the data must hold them.
std::vector<QByteArray> valuesIn(const QByteArray &data, const TypedItems &typed);
/// Where a value lies in data that was read of all items of a range as bits, or as words.
ValuePlace placeIn(const AreaRange &range, const TypedItems &typed, int index = 0);
/// The items of its area that a value needs.
AreaRange rangeOf(const TypedItems &typed, int index = 0);
