#include "session.h"

#include "drivers/tools/project_lookup.h"
#include "messages.h"
#include "run_directory.h"
#include "target.h"

#include <QFile>
#include <QFileInfo>

namespace
{

const qint64 Thousand = 1000;

struct FailureKind {
    const char *text; // what the driver's text begins with
    ExitCode code;
    const char *advice;
};

const FailureKind FailureKinds[] = {
    {"can not open database", DatabaseError,
     "is the file a project database? driverhost project --why tells"},
    {"failed to get default station id", DatabaseError,
     "has the project a link for this device with a default node? driverhost project --why tells"},
    {"failed to initialize valid bit addresses table", DatabaseError,
     "has the project a tag table? driverhost project --why tells"},
    {"invalid address", DatabaseError, "the project has no tag on a bit of this station"},
    {"exception code:0x01", ExceptionReply,
     "the slave does not know this function; try FN6HR or FN5DO to write"},
    {"exception code:0x02", ExceptionReply, "the slave does not have all of these addresses"},
    {"exception code:0x03", ExceptionReply, "the slave does not take this count or value"},
    {"exception code:0x0A", ExceptionReply,
     "the gateway has no way to this station: its routing table and serial port"},
    {"exception code:0x0B", ExceptionReply,
     "the gateway got no answer from the station: station id, wiring and baud rate behind it"},
    {"exception code:", ExceptionReply, "the slave is there and refuses; see its manual for the code"},
    {"can't read", UsageError, "the range ends beyond the area, or is more than one request carries"},
    {"can't write", UsageError, "this area has no writer for this kind, or the range is too long"},
    {"unsupported data type", UsageError, "use the kind bit, byte, word, dword, block or bit2"},
    {"PLC no response", NoReply, "station id, baud rate behind the gateway, wiring, and --timeout"},
    {"invalid slave id", NoReply,
     "another station answered: two with the same gateway port, or a late reply"},
    {"invalid response", NoReply, "does the gateway speak RTU framing, and not Modbus/TCP?"},
    {"CRC error", NoReply, "noise on the line, or another sender on the same gateway"},
    {"packet loss", NoReply, "the reply stopped short: --timeout, or a gateway that cuts frames"},
    {"received bytes <", NoReply, "the reply stopped short: --timeout, or a gateway that cuts frames"},
};

const FailureKind Unknown = {"", NoReply, "the connection broke while the request was sent"};
const FailureKind NotConnected = {"", CannotConnect,
                                  "host, port, cable and firewall; is another master connected?"};

const FailureKind &kindOf(const QString &text)
{
    for (const FailureKind &kind : FailureKinds) {
        if (text.startsWith(QLatin1String(kind.text), Qt::CaseInsensitive))
            return kind;
    }
    return Unknown;
}

Project projectFor(const LinkSettings &settings, const QStringList &tags)
{
    const int link = 1;
    Project project;
    project.links = {{link, DevStrToHmiPort(settings.channel.device)}};
    project.nodes = {{link, settings.channel.station, true, settings.channel.host, settings.channel.port}};
    for (const QString &tag : tags)
        project.tags.append({link, tag});
    return project;
}

bool makeDatabase(const LinkSettings &settings, const QStringList &tags, const QString &path, QString &error)
{
    if (settings.project.isEmpty())
        return writeProjectFile(path, projectFor(settings, tags), error);
    QFile file(settings.project);
    if (QFileInfo(settings.project).isFile() && file.copy(path))
        return true;
    error = QStringLiteral("cannot read the project database %1: %2")
                .arg(settings.project,
                     file.exists() ? file.errorString() : QStringLiteral("there is no such file"));
    return false;
}

} // namespace

Session::Session(const QString &plugin, const LinkSettings &settings)
    : m_station(settings.channel.station),
      m_channel(settings.channel),
      m_driver(plugin),
      m_trace(settings.trace ? stderrTrace() : TraceSink())
{
    m_channel.setObserver([this](ChannelEvent event, const QByteArray &bytes) { observe(event, bytes); });
}

std::optional<QByteArray> Session::read(const Items &items)
{
    prepare(items);
    const QByteArray data = m_driver->read(&m_channel, items.command());
    finish();
    if (m_driver->hasError() || data.isEmpty())
        return std::nullopt;
    return data;
}

bool Session::write(const Items &items, const QByteArray &data)
{
    prepare(items);
    const bool isWritten = m_driver->write(&m_channel, items.command(), data);
    finish();
    return isWritten;
}

int Session::stationFor(const Items &items) const
{
    return stationOf(items, m_station);
}

ExitCode Session::failure()
{
    return m_openFailed ? CannotConnect : kindOf(lastError()).code;
}

void Session::prepare(const Items &items)
{
    m_channel.setStation(stationFor(items));
    m_exchanges.clear();
    m_openFailed = false;
}

void Session::finish()
{
    m_trace.flush();
}

void Session::observe(ChannelEvent event, const QByteArray &bytes)
{
    m_openFailed = event == ChannelEvent::OpenFailed;
    switch (event) {
    case ChannelEvent::Opened: m_trace.event(QStringLiteral("connected")); break;
    case ChannelEvent::OpenFailed: m_trace.event(m_channel.errorString()); break;
    case ChannelEvent::Closed: m_trace.event(QStringLiteral("closed")); break;
    case ChannelEvent::Discarded: m_trace.dropped(bytes); break;
    case ChannelEvent::Sent:
        m_clock.start();
        m_exchanges.push_back({bytes, {}});
        m_trace.sent(bytes);
        break;
    case ChannelEvent::Received:
        if (!m_exchanges.empty())
            m_exchanges.back().reply += bytes;
        m_latency = m_clock.nsecsElapsed() / Thousand;
        m_trace.received(bytes);
        break;
    }
}

void warnOfBroadcast(int station)
{
    if (station == 0)
        tell(QStringLiteral("station 0 is a broadcast: every slave takes a write, and none replies"));
}

void tellFailure(Session &session, const Items &items)
{
    const FailureKind &kind = session.failure() == CannotConnect ? NotConnected : kindOf(session.lastError());
    complain(QStringLiteral("%1: %2").arg(items.label(0), session.lastError()));
    tell(QStringLiteral("  check: ") + QLatin1String(kind.advice));
}

int runWithDriver(const LinkSettings &settings, const QStringList &tags,
                  const std::function<int(Session &)> &task)
{
    QString error;
    const QString plugin = runsInRunDirectory() ? inheritedPlugin() : findPlugin(settings.plugin, error);
    if (plugin.isEmpty()) {
        complain(error);
        return OtherFailure;
    }
    if (!runsInRunDirectory()) {
        return runBesideDatabase(plugin, [&](const QString &path, QString &problem) {
            return makeDatabase(settings, tags, path, problem);
        });
    }
    Session session(plugin, settings);
    if (!session.isReady()) {
        complain(session.errorString());
        return OtherFailure;
    }
    return task(session);
}
