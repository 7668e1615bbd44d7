#pragma once

#include <QtGlobal>

/// The memory of this process that is in use at present.
qint64 residentBytes();

/// The files that this process has open.
int openFiles();
