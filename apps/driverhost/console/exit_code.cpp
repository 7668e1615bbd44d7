#include "apps/driverhost/console/exit_code.h"

ExitCode exitCodeOf(const Failure &failure)
{
    switch (failure.kind) {
    case FailureKind::CannotConnect: return CannotConnect;
    case FailureKind::Exception: return ExceptionReply;
    case FailureKind::NotRequested: return UsageError;
    case FailureKind::ProjectDatabase:
    case FailureKind::BitNotInProject: return DatabaseError;
    default: return NoReply;
    }
}
