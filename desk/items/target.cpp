#include "desk/items/target.h"

#include "desk/items/number_text.h"
#include "desk/wire/protocol.h"

#include <QRegularExpression>
#include <QUrl>

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

Result<Target> parseTarget(const QString &text)
{
    const QUrl url(text, QUrl::StrictMode);
    const QString scheme = text.section(QLatin1String("://"), 0, 0);
    if (looksLikeTarget(text) && scheme.toLower() != QLatin1String("rtutcp"))
        return Error{
            QStringLiteral("target \"%1\": unknown scheme \"%2\"; expected rtutcp, for RTU framing over TCP")
                .arg(text, scheme)};
    Target target;
    const int port = url.port(target.port);
    if (!url.isValid() || url.scheme() != QLatin1String("rtutcp") || url.host().isEmpty() ||
        !url.userInfo().isEmpty() || url.hasQuery() || url.hasFragment() || port < 1)
        return Error{
            QStringLiteral("target \"%1\": expected rtutcp://HOST:PORT/STATION, with a port from 1 to 65535")
                .arg(text)};
    target.host = url.host();
    target.port = static_cast<quint16>(port);
    const QString station = url.path().mid(1);
    if (station.isEmpty())
        return target;
    const Result<int> number =
        parseNumber(QStringLiteral("station"), station, modbus::BroadcastStation, modbus::MaxStationNumber);
    if (!number)
        return number.error();
    target.station = *number;
    return target;
}

QString endpointText(const QString &host, quint16 port)
{
    const QString name = host.contains(QLatin1Char(':')) ? QStringLiteral("[%1]").arg(host) : host;
    return name + QLatin1Char(':') + QString::number(port);
}

QString targetText(const Target &target)
{
    return QStringLiteral("rtutcp://%1/%2")
        .arg(endpointText(target.host, target.port), QString::number(target.station));
}
