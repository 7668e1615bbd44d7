#include "link_options.h"

#include "target.h"

namespace
{

const int HighestPort = 65535;
const int HighestStation = 255;
const int LongestTimeout = 3600 * 1000;
const int MostRetries = 1000;
// The driver counts a pause's nanoseconds in 32 bits.
const int LongestDelay = 4294;

QCommandLineOption option(const char *name, const char *description, const char *value, const char *usual)
{
    const QString defaultText = QLatin1String(usual);
    QString text = QLatin1String(description);
    if (!defaultText.isEmpty())
        text.replace(text.size() - 1, 1, QStringLiteral(" (default %1).").arg(defaultText));
    return {QLatin1String(name), text, QLatin1String(value), defaultText};
}

// An address of IPv6 may stand in brackets, as in a target.
QString hostOf(CommandLine &line)
{
    QString host = line.text("host");
    if (host.startsWith(QLatin1Char('[')) && host.endsWith(QLatin1Char(']')))
        return host.mid(1, host.size() - 2);
    if (looksLikeTarget(host) || looksLikeEndpoint(host))
        line.mistake(QStringLiteral("--host \"%1\": expected a name or an address alone; the port goes to "
                                    "--port, the station to --station")
                         .arg(host));
    return host;
}

Target targetOf(CommandLine &line, QStringList &words)
{
    Target target;
    QStringList others;
    int targets = 0;
    for (const QString &word : qAsConst(words)) {
        if (!looksLikeTarget(word)) {
            if (!line.isSet("raw") && looksLikeEndpoint(word))
                line.mistake(
                    QStringLiteral("\"%1\": a target begins with rtutcp://, as rtutcp://%1").arg(word));
            others += word;
            continue;
        }
        if (++targets > 1)
            line.mistake(QStringLiteral("\"%1\": one target is there already").arg(word));
        QString error;
        const std::optional<Target> given = parseTarget(word, error);
        if (given)
            target = *given;
        else
            line.mistake(error);
    }
    words = others;
    if (line.isSet("host"))
        target.host = hostOf(line);
    if (line.isSet("port"))
        target.port = static_cast<quint16>(line.number("port", 1, HighestPort));
    if (line.isSet("station"))
        target.station = line.number("station", 0, HighestStation);
    if (target.host.isEmpty())
        line.mistake(QStringLiteral("--host is empty"));
    return target;
}

} // namespace

QCommandLineOption pluginOption()
{
    return option("plugin",
                  "The driver's plug-in file (default: beside this program, or where it is installed).",
                  "FILE", "");
}

QCommandLineOption traceOption()
{
    return {QStringLiteral("trace"),
            QStringLiteral("Show every frame on standard error: time, direction, bytes, meaning.")};
}

QList<QCommandLineOption> linkOptions()
{
    return {
        option("host", "Name or address of the slave or its gateway.", "HOST", "127.0.0.1"),
        option("port", "TCP port.", "PORT", "502"),
        option("station", "Station (slave) id, 0 to 255.", "ID", "1"),
        option("device", "Device text of the link in the project: ETHERNET, or a port name such as COM1.",
               "TEXT", "ETHERNET"),
        option("project", "Project database to load (default: one made from the options).", "FILE", ""),
        option("timeout", "Milliseconds to wait for each part of a reply.", "MS", "3000"),
        option("connect-timeout", "Milliseconds to wait for a connection.", "MS", "3000"),
        option("retries", "Further attempts after a failed one.", "N", "3"),
        option("delay", "Milliseconds to pause before every attempt.", "MS", "0"),
        pluginOption(),
        traceOption(),
    };
}

LinkSettings linkSettings(CommandLine &line, QStringList &words)
{
    const Target target = targetOf(line, words);
    LinkSettings settings;
    settings.channel.host = target.host;
    settings.channel.port = target.port;
    settings.channel.station = target.station;
    settings.channel.device = line.text("device");
    settings.channel.timeout = line.number("timeout", 1, LongestTimeout);
    settings.channel.connectTimeout = line.number("connect-timeout", 1, LongestTimeout);
    settings.channel.retries = line.number("retries", 0, MostRetries);
    settings.channel.delay = static_cast<unsigned int>(line.number("delay", 0, LongestDelay));
    settings.plugin = line.text("plugin");
    settings.project = line.text("project");
    settings.trace = line.isSet("trace");
    QString error;
    if (!checkDeviceText(settings.channel.device, error))
        line.mistake(error);
    return settings;
}
