#pragma once

#include <QString>

/// Whether there is somebody who could answer: standard input is a terminal.
bool canAsk();

/// Asks on standard error and takes a line of standard input: whether it is yes.
bool askYesOrNo(const QString &question);
