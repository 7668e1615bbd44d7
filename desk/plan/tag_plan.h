#pragma once

#include "desk/readings/readings.h"

/// How to read all tags of a link as a panel would: bits of areas as bytes, which the driver asks for run by
/// run of those that are used; neighbouring registers together; bits of registers with their registers.
struct TagPlan {
    std::vector<Reading> readings;
    QStringList skipped; ///< tags that are no address that can be read
};

/// \a registerKind says what tags of whole registers are: words or double words.
TagPlan planTags(const QStringList &tags, ItemKind registerKind, ValueForm form);

/// The same values, each on its own: a range of which one address does not exist can still be read so.
std::vector<Reading> oneByOne(const Reading &reading);
