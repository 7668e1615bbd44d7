#pragma once

#include "desk/link/failure.h"

/// How a run of the program ended. The numbers are documented in the manual page; scripts rely on them.
enum ExitCode : int {
    Success = 0,
    OtherFailure = 1,  ///< the plug-in cannot be loaded, a file cannot be written
    UsageError = 2,    ///< options, an address or a value are wrong; nothing was sent
    CannotConnect = 3, ///< no connection to the slave
    NoReply = 4,       ///< no reply, or one that was cut, damaged or from another station
    ExceptionReply = 5,
    DatabaseError = 6,   ///< the project database cannot be used, or has no such link or bits
    NotVerified = 7,     ///< what was read back is not what was written
    Explained = 8,       ///< an examination found what is wrong
    NotExplained = 9,    ///< an examination found that something is wrong, and not what
    FoundDifferent = 10, ///< what was compared differs, or points overlap
    Interrupted = 130,
    OutputClosed = 141 ///< nobody reads the standard output any more, or its disk is full
};

/// The exit code that a failure of the driver stands for.
ExitCode exitCodeOf(const Failure &failure);
