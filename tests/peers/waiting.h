#pragma once

#include <functional>

/// Waits until \a condition holds, at most \a milliseconds. Whether it did.
bool waitUntil(const std::function<bool()> &condition, int milliseconds = 20000);
