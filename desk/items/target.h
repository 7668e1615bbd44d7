#pragma once

#include "desk/link_defaults.h"
#include "desk/result.h"

const int MaxPort = 65535;

/// The slave to talk to.
struct Target {
    QString host = QLatin1String(DefaultHost);
    quint16 port = DefaultPort;
    int station = DefaultStation;
};

/// Reads "rtutcp://HOST[:PORT][/STATION]"; an IPv6 address stands in brackets. What is left out keeps its
/// default.
Result<Target> parseTarget(const QString &text);

/// Whether a word on the command line is meant as a target.
bool looksLikeTarget(const QString &text);

/// Whether a word is "HOST:PORT", "HOST/STATION" or both, a target that lacks its beginning.
bool looksLikeEndpoint(const QString &text);

/// "HOST:PORT", with brackets about an IPv6 address.
QString endpointText(const QString &host, quint16 port);
/// "rtutcp://HOST:PORT/STATION", as parseTarget() reads it.
QString targetText(const Target &target);
