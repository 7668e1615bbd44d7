#pragma once

#include "desk/items/value_place.h"
#include "desk/readings/value_row.h"

#include <memory>

/// One request to the driver, and the values that are shown of what it brings. These need not be the items
/// that were asked for: bits of a project are read as bytes and shown one by one.
struct Reading {
    struct Shown {
        std::shared_ptr<const Point> point;
        int index = 0; ///< of the point's values
        ValuePlace place;
    };

    Items items;
    std::vector<Shown> shown;
};

/// The readings of all values of all points, in portions that one request each can carry.
std::vector<Reading> readingsOf(const std::vector<Point> &points);
/// The same of one point.
std::vector<Reading> readingsOf(const std::shared_ptr<const Point> &point);

/// A value without a name, as a point.
Point namelessPoint(const TypedItems &typed);

/// What people call a value: the point's name, or its address.
QString labelOf(const Reading::Shown &shown);
/// What messages call the reading: what its first value is called.
QString labelOf(const Reading &reading);
/// What messages call several readings: "HR1 and 3 more".
QString labelOf(const std::vector<const Reading *> &readings);

/// What the data that the driver read for \a reading shows. It came from \a station.
std::vector<ValueRow> rowsOf(const Reading &reading, const QByteArray &data, int station);
/// The same values as rows that say why there are none.
std::vector<ValueRow> failedRowsOf(const Reading &reading, const RowFailure &failure, int station);
