#pragma once

#include "desk/readings/readings.h"

/// The tags of a link in the order of their addresses, each a reading of its own: bits are bits, bits of
/// registers too, registers are words or double words unless the tag names a type.
struct TagReadings {
    std::vector<Reading> readings;
    QStringList skipped; ///< tags that are no single value that can be read, with the reason
};

/// \a registerKind says what tags of whole registers without a type are.
TagReadings tagReadingsOf(const QStringList &tags, ItemKind registerKind, ValueForm form);
