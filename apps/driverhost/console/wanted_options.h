#pragma once

#include "apps/driverhost/console/command_line.h"
#include "desk/doctor/observing/doctor_options.h"

/// The values that an examination is to find: words such as "HR100", "HR100=235", "HR100:f32=21.5" or, with a
/// table of points, "pressure=2.1"; without words all points of the table. What is wrong is noted in \a line.
std::vector<Wanted> wantedValues(CommandLine &line, const QStringList &words, int station);
