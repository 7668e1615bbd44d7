#pragma once

#include "desk/readings/readings.h"

/// A reading for each value of all points: of the registers or bits that it needs, whatever else is read.
/// Values that have to be read as they are, in portions: bytes of bits, of which the driver asks for those
/// alone that the project uses, and texts that nobody has taken apart.
std::vector<Reading> valueReadingsOf(std::vector<Point> points);

/// Where the reading lies when it can be read so, with the station of the link where its address names none.
std::optional<AreaRange> rangeOf(const Reading &reading, int linkStation);
