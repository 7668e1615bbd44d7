#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// \file
/// What helps to look at bytes, and an empty list to begin the sections of a frame with.

/// The bytes in hexadecimal, then as Latin-1 text up to the first zero byte: 01 AB 30 gives "(0X1 0Xab 0X30 )
/// : " and the three bytes; no bytes give "() : ".
QString dumpByteArray(const QByteArray &bytes);

/// The bytes in reverse order: 01 02 03 gives 03 02 01.
QByteArray reverseArray(const QByteArray &bytes);

/// The section sizes of an empty TxPackage.
QList<int> EmptyPackageSizeList();
