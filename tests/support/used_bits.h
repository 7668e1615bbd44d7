#pragma once

#include "host/driver_interface.h"
#include "tests/doubles/scripted_channel.h"

#include <string>

/// The bit addresses of a station that a driver knows as used, seen by what byte items over the whole of both
/// areas ask the slave for: "DI 0 2, DO 9". The error text when that fails, as it does without any address.
std::string usedBits(DriverInterface &driver, ScriptedChannel &channel, int station);
