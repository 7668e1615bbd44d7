#pragma once

#include "apps/driverdesk/worker/ground.h"
#include "apps/driverhost/console/command_line.h"

/// Reads what the link's project holds: the tags become readings, and the link leads to its default node
/// where the command line says nothing else.
Result<> takeProject(Ground &ground, CommandLine &line);
