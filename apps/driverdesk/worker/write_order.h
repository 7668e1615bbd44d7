#pragma once

#include "desk/points/point.h"

#include <QStringList>

/// One value to be written to a point, or to be shown as the frames that would write it.
struct WriteOrder {
    quint64 id = 0;
    Point point; ///< of one value
    QByteArray value;
    bool isPreview = true;
};

/// What came of it.
struct WriteOutcome {
    quint64 id = 0;
    bool isPreview = true;
    bool isGood = false;
    QStringList frames; ///< a line each with direction, bytes and meaning
    QString text;       ///< for people: written and verified, or the driver's text
    QString advice;     ///< what to look at next; empty when nothing failed
};
