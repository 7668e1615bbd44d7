#pragma once

#include "tests/lines/plan_device.h"

/// Points and the device that has them.
struct Layout {
    std::vector<AreaRange> points;
    PlanDevice device;
};

/// 395 registers, each 1 to 4 after the one before.
Layout denseLayout(unsigned int seed);
/// 466 registers, each 1 to 90 after the one before.
Layout sparseLayout(unsigned int seed);
/// 500 registers of 4,000 at random.
Layout scatteredLayout(unsigned int seed);
/// 400 points of all areas, double words and bits of registers among them, and holes: most of them between
/// points, some over them.
Layout mixedLayout(unsigned int seed);
/// Of any size and density, on one to three stations, with or without holes, boundaries and limits.
Layout randomLayout(unsigned int seed);
