#pragma once

#include "drivers/qt/qt_lines.h"

#include <QByteArray>
#include <QList>
#include <QPair>

/// Bytes of which it is known when they came, in microseconds.
class TimedBytes
{
public:
    const QByteArray &bytes() const { return m_bytes; }
    int size() const { return sizeOf(m_bytes); }
    void add(const QByteArray &bytes, qint64 at);
    /// Takes the first \a count bytes, or all when there are fewer.
    QByteArray take(int count);
    /// When the byte at \a index came.
    qint64 arrivalOf(int index) const;
    /// Takes everything.
    QByteArray takeAll() { return take(size()); }

private:
    QByteArray m_bytes;
    QList<QPair<int, qint64>> m_arrivals; // sizes of segments, and when they came
};
