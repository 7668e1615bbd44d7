#pragma once

#include "tests/stateful/world.h"
#include "tests/stateful/world_model.h"

#include <rapidcheck/state.h>

/// One step of a sequence, as the property test makes it up and shows it.
using Step = rc::state::Command<WorldModel, World>;

/// Makes up one of all kinds of steps, transfers above all.
rc::Gen<std::shared_ptr<const Step>> anyStep(const WorldModel &before);
