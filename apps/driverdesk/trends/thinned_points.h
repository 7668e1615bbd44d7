#pragma once

#include "apps/driverdesk/trends/trend_ring.h"

#include <QVector>

/// The samples between two times as they can be drawn on so many columns of pixels: of each column the first,
/// the smallest, the largest and the last. A gap stays a point that is not a number, so no line goes
/// through it. The neighbours outside of both times are there too, so that lines reach the edges.
QVector<QPointF> thinnedPoints(const TrendRing &ring, double begin, double end, int columns);
