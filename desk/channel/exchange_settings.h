#pragma once

#include "desk/channel/settle_rule.h"

#include <QMap>

/// What a channel answers to the driver that uses it. Times are in milliseconds.
struct ExchangeSettings {
    int station = 1;
    int timeout = 3000;        ///< for each part of a reply
    int connectTimeout = 3000; ///< for opening
    int retries = 3;           ///< further attempts after a failed one
    unsigned int delay = 0;    ///< before every attempt
    SettleRule settle;
    QMap<int, SettleRule> stationSettle; ///< of stations that want it otherwise
};
