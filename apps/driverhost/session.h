#pragma once

#include "exit_codes.h"
#include "items.h"
#include "link_options.h"
#include "loaded_driver.h"
#include "project_file.h"
#include "tcp_channel.h"
#include "trace.h"

#include <QElapsedTimer>

/// One exchange on the wire.
struct Exchange {
    QByteArray request;
    QByteArray reply; ///< what came of it, also when that is not all
};

/// A loaded driver and the channel that it is given: everything that a host does for one link.
class Session
{
public:
    /// Begins without a connection; the driver opens it.
    Session(const QString &plugin, const LinkSettings &settings);

    bool isReady() const { return m_driver.isLoaded(); }
    /// Why the plug-in could not be loaded.
    QString errorString() const { return m_driver.errorString(); }

    /// Reads items from their own station, or from the link's when their address names none. Nothing on
    /// failure; see failure().
    std::optional<QByteArray> read(const Items &items);
    bool write(const Items &items, const QByteArray &data);

    int stationFor(const Items &items) const;
    /// The driver's text of the last failure, and the exit code that it stands for.
    QString lastError() { return m_driver->getLastError(); }
    ExitCode failure();
    /// The exchanges of the last read or write, and how long the last reply took.
    const std::vector<Exchange> &exchanges() const { return m_exchanges; }
    qint64 latencyMicroseconds() const { return m_latency; }

    TcpChannel &channel() { return m_channel; }
    LoadedDriver &driver() { return m_driver; }

private:
    void prepare(const Items &items);
    void finish();
    void observe(ChannelEvent event, const QByteArray &bytes);

    int m_station;
    TcpChannel m_channel;
    LoadedDriver m_driver;
    MasterTrace m_trace;
    QElapsedTimer m_clock;
    qint64 m_latency = 0;
    std::vector<Exchange> m_exchanges;
    bool m_openFailed = false;
};

/// Tells what to expect of station 0.
void warnOfBroadcast(int station);

/// Tells a failure: the driver's text as it stands, and what to look at next.
void tellFailure(Session &session, const Items &items);

/// Runs \a task with a session beside the project database: that of the settings, or one with the settings'
/// link and these tags. The exit code.
int runWithDriver(const LinkSettings &settings, const QStringList &tags,
                  const std::function<int(Session &)> &task);
