#include "target.h"

#include <QRegularExpression>
#include <QUrl>

namespace
{

const int HighestStation = 255;
const int HighestPort = 65535;
// COM4294967295 is more than any panel has; above it the driver's arithmetic wraps.
const int LongestPortNumber = 5;

} // namespace

std::optional<int> parseNumber(const QString &what, const QString &text, int lowest, int highest,
                               QString &error)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (isNumber && number >= lowest && number <= highest)
        return number;
    error = QStringLiteral("%1 \"%2\": expected a whole number from %3 to %4")
                .arg(what, text, QString::number(lowest), QString::number(highest));
    return std::nullopt;
}

bool looksLikeTarget(const QString &text)
{
    return text.contains(QLatin1String("://"));
}

bool looksLikeEndpoint(const QString &text)
{
    static const QRegularExpression endpoint(
        QStringLiteral("^(?:\\[[^\\]]*\\]|[^:/\\[\\]]+)(?::\\d+(?:/\\d*)?|/\\d+)$"));
    return endpoint.match(text).hasMatch();
}

std::optional<Target> parseTarget(const QString &text, QString &error)
{
    const QString form =
        QStringLiteral("target \"%1\": expected rtutcp://HOST:PORT/STATION, with a port from 1 to 65535")
            .arg(text);
    const QUrl url(text, QUrl::StrictMode);
    if (!url.isValid() || url.scheme() != QLatin1String("rtutcp") || url.host().isEmpty() ||
        !url.userInfo().isEmpty() || url.hasQuery() || url.hasFragment()) {
        error = form;
        return std::nullopt;
    }

    Target target;
    target.host = url.host();
    const int port = url.port(target.port);
    if (port < 1 || port > HighestPort) {
        error = form;
        return std::nullopt;
    }
    target.port = static_cast<quint16>(port);
    const QString station = url.path().mid(1);
    if (!station.isEmpty()) {
        const std::optional<int> number =
            parseNumber(QStringLiteral("station"), station, 0, HighestStation, error);
        if (!number)
            return std::nullopt;
        target.station = *number;
    }
    return target;
}

bool checkDeviceText(const QString &device, QString &error)
{
    static const QRegularExpression link(
        QStringLiteral("^(?:ethernet.*|.*[^0-9][0-9]{1,%1})$").arg(LongestPortNumber),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    if (link.match(device).hasMatch())
        return true;
    error = QStringLiteral(
                "device \"%1\": expected ETHERNET, or a port name that ends in its number, such as COM1")
                .arg(device);
    return false;
}

QString endpointText(const QString &host, quint16 port)
{
    const QString name = host.contains(QLatin1Char(':')) ? QStringLiteral("[%1]").arg(host) : host;
    return name + QLatin1Char(':') + QString::number(port);
}
