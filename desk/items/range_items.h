#pragma once

#include "desk/items/area_range.h"
#include "desk/items/items.h"

#include <QByteArray>

/// The items by which the driver reads a whole range: bits, or words.
Items itemsOf(const AreaRange &range);

/// Of the data that was read of \a range so, what belongs to \a part of it.
QByteArray partOf(const QByteArray &data, const AreaRange &range, const AreaRange &part);
