#pragma once

#include "desk/doctor/observing/doctor_options.h"
#include "desk/doctor/observing/observations.h"

/// Where a wanted value would stand, and in which order, if a guess is right.
struct Guess {
    int shift = 0;              ///< of the address
    bool isInOtherArea = false; ///< inputs instead of what can be written, or the other way round
    std::optional<ByteOrder> order;
    double factor = 1; ///< by which what is read is larger than what was expected
};

/// The read that brings the value; empty where the guess leads out of the area.
QByteArray requestFor(int station, const Wanted &wanted, const Guess &guess = {});
/// The value in the reply to that request.
QByteArray valueIn(const QByteArray &reply, const Wanted &wanted, const Guess &guess = {});
/// Whether the value is the expected one, to the digits that were given, or within the limits.
bool fits(const Wanted &wanted, const QByteArray &value, const Guess &guess = {});
/// What people see.
QString shownText(const Wanted &wanted, const QByteArray &value);

/// Inputs and what can be written, each for the other.
Area otherArea(Area area);
/// "HR".
QString lettersOf(Area area);
