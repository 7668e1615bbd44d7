#pragma once

#include <QStringList>

#include <functional>

/// The body of a benchmark program, a console application of Qt: runs \a work with the program's arguments,
/// of which there must be as many as \a usage has words. Prints what is thrown; returns the exit code.
int runProgram(int argc, char **argv, const char *usage,
               const std::function<void(const QStringList &)> &work);
