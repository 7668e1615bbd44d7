#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// \file
/// Sleeping, time, processes, and what helps to look at bytes.

/// Sleeps for \a milliseconds, signals notwithstanding; 0 returns without entering the kernel. The
/// nanoseconds are counted modulo 2^32, so 4294 is the longest exact sleep (5000 sleeps 0.705 s).
void HRSleep(unsigned long milliseconds);

/// Milliseconds of the monotonic clock, which begins with the start of the system and does not jump.
qint64 CurrentMSecsSinceBoot();

/// Whether a process has the id \a pid, also one that belongs to another user. False for a number that is no
/// process id of the system.
bool ProcessIsRunning(qint64 pid);

/// The bytes in hexadecimal, then as Latin-1 text up to the first zero byte: 01 AB 30 gives "(0X1 0Xab 0X30 )
/// : " and the three bytes; no bytes give "() : ".
QString dumpByteArray(const QByteArray &bytes);

/// The bytes in reverse order: 01 02 03 gives 03 02 01.
QByteArray reverseArray(const QByteArray &bytes);

/// The section sizes of an empty TxPackage.
QList<int> EmptyPackageSizeList();
