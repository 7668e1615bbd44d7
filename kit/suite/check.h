#pragma once

#include "kit/suite/trial.h"

#include <vector>

namespace kit
{

/// One thing that every driver of the family owes its host.
struct Check {
    /// A topic and a name: "channel.truncation".
    const char *id;
    /// Why a driver has to pass it, in one sentence.
    const char *why;
    void (*run)(Trial &trial);
};
using Checks = std::vector<Check>;

} // namespace kit
