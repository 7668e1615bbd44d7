#pragma once

#include <QString>

/// The address text of a tag with a station in front, taken apart.
struct StationTag {
    unsigned int station;
    bool isCoil; ///< otherwise a discrete input
    unsigned int number;
};

/// Takes apart "2-DI5", "2-DO5" and "2-FN5DO5", in any case: digits, a minus sign, the area, digits. What
/// follows them is not looked at. Digits of every script count as such, but only 0 to 9 make a number; other
/// numbers, and those beyond 32 bits, are 0. False, and \a tag as it was, for other texts.
bool splitStationTag(const QString &text, StationTag &tag);
