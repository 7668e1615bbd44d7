#pragma once

#include <QString>

#include <optional>

/// The slave to talk to.
struct Target {
    QString host = QStringLiteral("127.0.0.1");
    quint16 port = 502;
    int station = 1;
};

/// Reads "rtutcp://HOST[:PORT][/STATION]"; an IPv6 address stands in brackets. What is left out keeps its
/// default. On failure \a error says what is wrong.
std::optional<Target> parseTarget(const QString &text, QString &error);

/// Whether a word on the command line is meant as a target.
bool looksLikeTarget(const QString &text);

/// Whether a word is "HOST:PORT", "HOST/STATION" or both, a target that lacks its beginning.
bool looksLikeEndpoint(const QString &text);

/// A whole number in [lowest, highest]; otherwise \a error names \a what.
std::optional<int> parseNumber(const QString &what, const QString &text, int lowest, int highest,
                               QString &error);

/// Whether \a device can name a link: it begins with "ETHERNET" or ends in digits behind some other text.
/// Anything else would stop the driver.
bool checkDeviceText(const QString &device, QString &error);

/// "HOST:PORT", with brackets about an IPv6 address.
QString endpointText(const QString &host, quint16 port);
