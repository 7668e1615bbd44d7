#pragma once

#include "desk/doctor/observing/examiner.h"
#include "desk/doctor/observing/finding.h"

/// What an examination has come to.
struct Diagnosis {
    Target target; ///< that was asked for
    Findings faults;
    Findings remarks;
    QStringList command;   ///< that reads what was wanted, word for word
    bool worksNow = false; ///< or after the other side was changed
    bool wasCancelled = false;
    qint64 duration = 0; ///< microseconds

    bool isHealthy() const { return faults.empty() && !wasCancelled; }
    /// Whether every fault is one of which it is known what to change.
    bool isExplained() const;
    /// One sentence, with a capital letter and a full stop.
    QString verdict() const;
    /// The command for a shell.
    QString commandText() const;
};

/// Examines the slave at the end of the line, from the cable up, and stops where an answer explains
/// everything.
Diagnosis diagnose(Examiner &examiner);
