#pragma once

#include "desk/items/typed_items.h"

#include <vector>

/// The same values in portions that one request each can read, or write.
std::vector<TypedItems> portionsOf(const TypedItems &typed);
std::vector<TypedItems> writePortionsOf(const TypedItems &typed);
