#pragma once

#include "kit/suite/check.h"

namespace kit
{

/// Every check of the kit, by topic.
Checks allChecks();

/// The checks of one topic.
/// @{
Checks loadingChecks();
Checks ownershipChecks();
Checks identityChecks();
Checks commandChecks();
Checks errorChecks();
Checks attemptChecks();
Checks channelChecks();
Checks transmissionChecks();
Checks refusalChecks();
Checks corruptionChecks();
Checks stalenessChecks();
Checks hygieneChecks();
Checks transcriptChecks();
/// @}

} // namespace kit
