#pragma once

#include "desk/doctor/observing/finding.h"

/// Adds what it means that the working station refuses to read \a what, for people.
void addRefusal(const Asked &refusal, const QString &what, const Observations &seen, Judgement &judgement);
