#pragma once

#include "desk/points/point.h"

#include <QStringList>

/// Points in a table of a spreadsheet, a row each. The first row has the columns' titles, in any order:
/// name, address, type, order, scale, offset, unit, low, high, states, comment; name and address must be
/// there.

/// What a table holds, and what is wrong with it: "LINE: column 4 (type): what was expected".
struct PointTable {
    std::vector<Point> points;
    QStringList problems;
};
PointTable parsePoints(const QByteArray &csv);

/// The points of a file without any problem; otherwise the error has them all, a line each with the path.
Result<std::vector<Point>> readPointFile(const QString &path);
