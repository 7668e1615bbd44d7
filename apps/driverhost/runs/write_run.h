#pragma once

#include "apps/driverhost/runs/write_request.h"
#include "desk/link/session.h"

/// Writes one request after the other, each in as many frames as it takes, reads back when \a isVerified, and
/// reports what was written; ends with the first that fails. The exit code.
int runWrites(Session &session, const std::vector<WriteRequest> &requests, bool isVerified,
              OutputFormat format);

/// Shows the frames that the writes would send. The exit code.
int showFrames(Session &session, const std::vector<WriteRequest> &requests, OutputFormat format);
