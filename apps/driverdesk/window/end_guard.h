#pragma once

/// Ends the process after so many milliseconds, whatever it is at then: a name that is looked up, or a pause
/// of the driver, cannot be broken off.
void endWithin(int milliseconds);
