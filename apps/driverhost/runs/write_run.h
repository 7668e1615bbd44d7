#pragma once

#include "apps/driverhost/runs/write_request.h"
#include "desk/link/session.h"

/// Writes in as many requests as it takes, reads back when \a isVerified, and reports what was written. The
/// exit code.
int runWrite(Session &session, const WriteRequest &request, bool isVerified, OutputFormat format);

/// Shows the frames that a write would send. The exit code.
int showFrames(Session &session, const WriteRequest &request, OutputFormat format);
