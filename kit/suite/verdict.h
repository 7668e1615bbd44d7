#pragma once

#include "kit/subject/difference.h"

#include <QStringList>

class QDataStream;

namespace kit
{

/// What came of one check.
struct Verdict {
    enum State {
        Passed,
        Differs, ///< as the subject declares
        Failed,
        Skipped ///< there was nothing to check
    };

    State state;
    /// Why it was skipped.
    QString skipped;
    /// The first findings that no difference covers, and how many there are.
    std::vector<Finding> findings;
    int findingCount;
    /// The reasons of the differences that were seen.
    QStringList reasons;
    double seconds;

    Verdict();
};

/// For the way from one process to another; without the time.
/// @{
QDataStream &operator<<(QDataStream &stream, const Verdict &verdict);
QDataStream &operator>>(QDataStream &stream, Verdict &verdict);
/// @}

} // namespace kit
