#pragma once

/// \file
/// The tools that every driver of the family builds on: free functions without state, all in the global
/// namespace.

#include "drivers/tools/bit_array.h"
#include "drivers/tools/byte_order.h"
#include "drivers/tools/checksum.h"
#include "drivers/tools/command_data.h"
#include "drivers/tools/diagnostics.h"
#include "drivers/tools/format_pack.h"
#include "drivers/tools/plc_address.h"
#include "drivers/tools/project_lookup.h"
#include "drivers/tools/timing.h"
#include "drivers/tools/tx_package.h"
