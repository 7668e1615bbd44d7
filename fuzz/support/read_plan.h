#pragma once

#include "fuzz/support/command.h"

#include <QMap>
#include <QSet>

namespace fuzz
{

/// The zero-based bit addresses that a project uses, by station.
struct UsedBits {
    QMap<int, QSet<int>> inputs;
    QMap<int, QSet<int>> coils;
};

struct ReadPlan : Plan {
    /// For reads of used bits: where the bits of each request go.
    QList<int> positions;
};

ReadPlan planRead(const Command &command, int station, const UsedBits &project);

} // namespace fuzz
