#pragma once

#include "apps/driverdesk/worker/ground.h"

/// The rows of the points that a table says; its first line has the titles. Problems fail the test.
std::vector<PointRow> rowsOfTable(const QByteArray &csv);

/// One row of a point: "HR1,u16" are its address and what stands after that, by the columns address, type,
/// scale, unit, low, high, states.
PointRow rowOfPoint(const QByteArray &cells, int station = 1);
