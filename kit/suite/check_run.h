#pragma once

#include "kit/suite/check.h"

namespace kit
{

/// Runs a check in a process of its own, so that a driver that crashes, hangs or leaves something behind
/// spoils no other check. What the driver prints is kept from the report.
Verdict runIsolated(const Check &check, const Settings &settings, Subject &subject);

/// Runs it in this process, for a debugger.
Verdict runHere(const Check &check, const Settings &settings, Subject &subject);

} // namespace kit
