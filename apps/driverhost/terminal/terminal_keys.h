#pragma once

#include <QByteArrayList>

/// Keys that are typed on standard input while a program goes on, one by one and without showing them.

/// From now on keys are taken, where standard input is this program's terminal. \a enter and \a leave are
/// written to standard output when the program is continued after a stop, and before one; they have to be
/// constants.
void takeKeys(const char *enter, const char *leave);
/// The terminal is as it was before takeKeys().
void releaseKeys();
/// What was typed since the last call; each an ordinary character or the sequence of a key such as "\x1b[B".
QByteArrayList typedKeys();
