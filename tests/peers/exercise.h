#pragma once

#include "tests/peers/driver_link.h"

/// What a slave's inputs have to hold for the exercise.
bool exerciseInput(int offset);
int exerciseInputRegister(int offset, int station);
/// The tags of the project database that it wants.
QStringList exerciseTags();

/// Reads and writes a slave of 65536 addresses an area with every function of the driver, in every layout, up
/// to the protocol's limits and to the last address, and expects what it wrote. What is not right fails the
/// running test.
void exerciseEveryFunction(DriverLink &link);
