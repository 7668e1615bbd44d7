#pragma once

#include "desk/doctor/observing/doctor_options.h"
#include "desk/doctor/observing/finding.h"

/// Takes what \a other changes into \a remedy.
void add(Remedy &remedy, const Remedy &other);

/// The words of the command that reads what was wanted, or something that was seen to be readable.
QStringList commandFor(const DoctorOptions &options, const Remedy &remedy, const Observations &seen);

/// A word as a shell takes it.
QString shellWord(const QString &word);
