#pragma once

#include <QString>
#include <QStringList>

/// How a value of a slave moves by itself.
struct Movement {
    enum Kind { None, Ramp, Sine, Counter, Random };

    Kind kind = None;
    int min = 0;
    int max = 100;
    int period = 10000; ///< milliseconds: of a ramp and a sine the whole, of counter and random a step
};

/// "none", "ramp", "sine", "counter", "random", in the order of the enumeration.
const QStringList &movementNames();

/// The value at a time in milliseconds, the same for the same time and seed: between min and max, both
/// included. Without a movement it is \a resting.
int valueAt(const Movement &movement, qint64 time, quint32 seed, int resting);
