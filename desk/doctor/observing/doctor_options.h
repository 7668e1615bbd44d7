#pragma once

#include "desk/channel/exchange_settings.h"
#include "desk/items/target.h"
#include "desk/points/point.h"

#include <vector>

/// A value that whoever asks wants to read.
struct Wanted {
    Point point;
    QString expected; ///< as it is shown where the slave is; empty when nobody knows

    /// Whether what is read can be judged: by an expected value, or by limits.
    bool isJudged() const { return !expected.isEmpty() || point.low || point.high; }
};

/// What an examination is about.
struct DoctorOptions {
    Target target;
    ExchangeSettings exchange; ///< as the caller's programs use the line
    std::vector<Wanted> wanted;
    bool probesWrites = false;     ///< whether what was read may be written back
    qint64 listenTime = 10000000;  ///< to a line at rest, in microseconds
    qint64 longestTime = 55000000; ///< after which nothing new is asked
    QStringList moreOptions;       ///< of the link, for the command that is suggested
};
