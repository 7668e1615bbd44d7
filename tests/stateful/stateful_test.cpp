#include "tests/stateful/commands.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

// Sequences of transfers, faults, settings and projects: after each transfer the driver has returned what its
// model returns, has sent as often, and the slave and the line are as the model has them. A sequence that
// fails is shortened before it is shown; RC_PARAMS in the environment, which is shown with it, repeats it.

RC_GTEST_PROP(Stateful, DriverDoesWhatItsModelDoes, ())
{
    World world;
    rc::state::check(WorldModel(), world, [](const WorldModel &before) { return anyStep(before); });
}
