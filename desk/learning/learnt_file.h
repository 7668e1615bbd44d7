#pragma once

#include "desk/learning/station_facts.h"
#include "desk/result.h"

/// What was learnt of stations as a file that outlives the program; the form is explained in the source.

/// What the text of a file says; the error names the line and what was expected.
Result<Learnt> parseLearnt(const QString &text);
/// The text of a file.
QString textOf(Learnt &learnt);

/// Reads a file. One that is not there yet holds nothing.
Result<Learnt> readLearntFile(const QString &path);
/// Writes the file anew, whole or not at all.
Result<> writeLearntFile(const QString &path, Learnt &learnt);
