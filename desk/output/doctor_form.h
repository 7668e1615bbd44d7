#pragma once

#include "desk/doctor/diagnosis.h"
#include "desk/output/fields.h"

/// What an examination has come to, for people and for programs.

/// Text in lines of at most \a width characters, but for commands; CSV with a row for each finding; JSON as
/// one object.
QStringList linesOf(const Diagnosis &diagnosis, OutputFormat format, int width);

/// A page of HTML that needs nothing besides itself; \a examinedAt is for people.
QString pageOf(const Diagnosis &diagnosis, const QString &examinedAt);
