#pragma once

#include "desk/items/typed_items.h"

#include <vector>

/// The same items in portions that one request each can read, or write.
std::vector<Items> portionsOf(const Items &items);
std::vector<TypedItems> portionsOf(const TypedItems &typed);
std::vector<Items> writePortionsOf(const Items &items);
