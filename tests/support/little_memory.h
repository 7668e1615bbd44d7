#pragma once

#include <functional>
#include <string>

/// Runs \a run in a process of its own that may take \a megabytes more than it has, and reports to the test
/// what it returns unless that is empty, and when the process stops. Runs nothing where memory cannot be
/// limited: under AddressSanitizer and in an emulator.
void inLittleMemory(int megabytes, const std::function<std::string()> &run);
