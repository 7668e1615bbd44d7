#pragma once

#include "desk/result.h"

const quint16 DefaultPort = 502;
const int MaxPort = 65535;

/// The slave to talk to.
struct Target {
    QString host = QStringLiteral("127.0.0.1");
    quint16 port = DefaultPort;
    int station = 1;
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
