#pragma once

#include "desk/items/items.h"

#include <vector>

/// The same items in portions that one request each can read.
std::vector<Items> portionsOf(const Items &items);
