#pragma once

#include "kit/report/report.h"

namespace kit
{

/// What people read. Each ends in a line feed.
/// @{

/// One check: a line when all is well, else the why, and for each finding the command, the frames, what was
/// expected and what happened.
QString textReport(const Result &result);
/// The last line: how many checks passed, differ as declared, were skipped, failed.
QString textSummary(const Results &results);
/// @}

} // namespace kit
