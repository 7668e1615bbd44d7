#pragma once

#include "apps/driverhost/console/point_options.h"

/// Some values to be written, one after the other from an address on, or to a point.
struct WriteRequest {
    Point point;
    std::vector<QByteArray> values;
};

/// Reads what is to be written: an address or a name and its values, or NAME=VALUE and ADDRESS=VALUE any
/// number of times. With \a mayRound numbers become what their type can hold. What is wrong is noted in \a
/// line.
std::vector<WriteRequest> writeRequests(const QStringList &words, bool mayRound, CommandLine &line);

/// Why nothing can be written to the items; empty when it can.
QString problemWithWrite(const Items &items);
/// Why the items cannot be broadcast; empty when they can.
QString problemWithBroadcast(const Items &items);
