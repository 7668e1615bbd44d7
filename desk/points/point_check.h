#pragma once

#include "desk/points/point.h"

#include <QStringList>

/// What is odd about points that each are right: the same value under two names, values that share registers.
/// A word and its bits are no such thing. A line each: "LINE: ...".
QStringList oddPoints(const std::vector<Point> &points);
