#include "apps/driverhost/console/link_options.h"

#include "apps/driverhost/console/messages.h"
#include "desk/items/target.h"
#include "desk/link/settle_rules.h"
#include "desk/project/device_text.h"

#include <algorithm>

namespace
{

const int MaxTimeout = 3600 * 1000;
const int MaxRetries = 1000;
// The driver counts a pause's nanoseconds in 32 bits.
const int MaxDelay = 4294;

QCommandLineOption option(const char *name, const char *description, const char *value)
{
    return {QLatin1String(name), QLatin1String(description), QLatin1String(value)};
}

QCommandLineOption optionWithDefault(const char *name, const char *description, const char *value,
                                     const QString &defaultText)
{
    return {QLatin1String(name),
            QStringLiteral("%1 (default %2).").arg(QLatin1String(description), defaultText),
            QLatin1String(value), defaultText};
}

QCommandLineOption optionWithDefault(const char *name, const char *description, const char *value,
                                     qint64 defaultNumber)
{
    return optionWithDefault(name, description, value, QString::number(defaultNumber));
}

// An address of IPv6 may stand in brackets, as in a target.
QString hostOf(CommandLine &line)
{
    QString host = line.text("host");
    if (host.startsWith(QLatin1Char('[')) && host.endsWith(QLatin1Char(']')))
        return host.mid(1, host.size() - 2);
    if (looksLikeTarget(host) || looksLikeEndpoint(host))
        line.addError(QStringLiteral("--host \"%1\": expected a name or an address alone; the port goes to "
                                     "--port, the station to --station")
                          .arg(host));
    if (host.isEmpty())
        line.addError(QStringLiteral("--host is empty"));
    return host;
}

// A target that is written out and an option that says the same in other words: nobody knows which is meant.
// What has a name may be kept for long, and an option counts before it.
void refuseTwoPlaces(CommandLine &line, const QStringList &words)
{
    const auto target = std::find_if(words.begin(), words.end(), looksLikeTarget);
    if (target == words.end())
        return;
    for (const char *option : {"host", "port", "station"}) {
        if (line.isSet(option))
            line.addError(
                QStringLiteral("--%1 beside %2: expected one of them").arg(QLatin1String(option), *target));
    }
}

// Takes the target out of the words and sets what it says where no option says something else. Who said it.
QString takeTarget(CommandLine &line, QStringList &words, const std::optional<TargetChoice> &otherwise)
{
    refuseTwoPlaces(line, words);
    const bool isOtherwise = otherwise && !hasTarget(words);
    const Result<TargetChoice> choice = isOtherwise ? *otherwise : chooseTarget(words);
    if (!choice) {
        line.addError(choice.errorText());
        return {};
    }
    for (const QString &word : qAsConst(words)) {
        if (!line.isSet("raw") && looksLikeEndpoint(word))
            line.addError(QStringLiteral("\"%1\": a target begins with rtutcp://, as rtutcp://%1").arg(word));
    }
    line.setDefaults(choice->settings, choice->origin);
    return choice->origin;
}

} // namespace

QCommandLineOption pluginOption()
{
    return option("plugin",
                  "The driver's plug-in file (default: beside this program, or where it is installed).",
                  "FILE");
}

QCommandLineOption traceOption()
{
    return {QStringLiteral("trace"),
            QStringLiteral("Show every frame on standard error: time, direction, bytes, meaning.")};
}

QList<QCommandLineOption> linkOptions()
{
    const ChannelSettings channel;
    return {
        optionWithDefault("host", "Name or address of the slave or its gateway", "HOST", channel.host),
        optionWithDefault("port", "TCP port", "PORT", channel.port),
        optionWithDefault("station", "Station (slave) id, 0 to 255", "ID", channel.station),
        optionWithDefault("device",
                          "Device text of the link in the project: ETHERNET, or a port name such as COM1",
                          "TEXT", channel.device),
        option("project", "Project database to load (default: one made from the options).", "FILE"),
        optionWithDefault("timeout", "Milliseconds to wait for each part of a reply", "MS", channel.timeout),
        optionWithDefault("connect-timeout", "Milliseconds to wait for a connection", "MS",
                          channel.connectTimeout),
        optionWithDefault("retries", "Further attempts after a failed one", "N", channel.retries),
        optionWithDefault(
            "settle",
            "How a line is settled after a request that was not answered, before the station is "
            "asked again: auto, echo, quiet[:MS] or off; of single stations as 7=off, with commas",
            "RULES", QStringLiteral("auto")),
        optionWithDefault("delay", "Milliseconds to pause before every attempt", "MS", channel.delay),
        pluginOption(),
        traceOption(),
        option("record", "Write commands, requests and replies to a file that driver-conformance plays back.",
               "FILE"),
    };
}

TraceSink traceOf(const CommandLine &line)
{
    return line.isSet("trace") ? stderrTrace() : TraceSink();
}

LinkSettings linkSettings(CommandLine &line, QStringList &words, const std::optional<TargetChoice> &otherwise)
{
    LinkSettings settings;
    settings.targetOrigin = takeTarget(line, words, otherwise);
    settings.channel.host = hostOf(line);
    settings.channel.port = static_cast<quint16>(line.number("port", 1, MaxPort));
    settings.channel.station = line.number("station", modbus::BroadcastStation, modbus::MaxStationNumber);
    settings.channel.device = line.text("device");
    settings.channel.timeout = line.number("timeout", 1, MaxTimeout);
    settings.channel.connectTimeout = line.number("connect-timeout", 1, MaxTimeout);
    settings.channel.retries = line.number("retries", 0, MaxRetries);
    settings.channel.delay = static_cast<unsigned int>(line.number("delay", 0, MaxDelay));
    const Result<> settle = applySettleRules(line.text("settle"), settings.channel);
    if (!settle)
        line.addError(QStringLiteral("--settle ") + settle.errorText());
    settings.plugin = line.text("plugin");
    settings.project = line.text("project");
    settings.trace = traceOf(line);
    settings.recordFile = line.text("record");
    const Result<> device = checkDeviceText(settings.channel.device);
    if (!device)
        line.addError(device.errorText());
    return settings;
}
