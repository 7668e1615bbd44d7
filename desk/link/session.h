#pragma once

#include "desk/items/items.h"
#include "desk/link/failure.h"
#include "desk/link/line_counts.h"
#include "desk/link/link_settings.h"
#include "desk/link/loaded_driver.h"

#include <memory>

/// A loaded driver and the channel that it is given: everything that a host does for one link.
class Session
{
public:
    /// Starts without a connection; the driver opens it, over TCP. \a plugin is the driver's file.
    Session(const QString &plugin, const LinkSettings &settings);
    /// The same over a channel of the caller's.
    Session(const QString &plugin, const LinkSettings &settings, std::unique_ptr<LineChannel> channel);

    bool isReady() const { return m_driver.isLoaded(); }
    /// Why the plug-in could not be loaded.
    QString errorString() const { return m_driver.errorString(); }

    /// Reads items from their own station, or from the link's when their address names none. Nothing on
    /// failure; see failure().
    std::optional<QByteArray> read(const Items &items);
    bool write(const Items &items, const QByteArray &data);

    /// Whether a request that was refused for its function, addresses or count is sent again, as the retries
    /// have it (default); a device that has refused it once does so again.
    void setRepeatsRefused(bool repeats) { m_repeatsRefused = repeats; }

    int stationFor(const Items &items) const;
    const ChannelSettings &settings() const { return m_settings; }
    /// Gives replies another time from now on, in milliseconds.
    void setTimeout(int timeout);
    /// The last failure, with the driver's text.
    Failure failure() const;
    /// What happened on the line during the last read or write, or happens during this one.
    const CommandRecord &lastCommand() const { return m_command; }
    const std::vector<Exchange> &exchanges() const { return m_command.exchanges(); }
    /// What has happened on the line since the session began, the command that runs left out.
    const LinkCounts &counts() const { return m_counts; }

    LineChannel &channel() { return *m_channel; }
    const LineChannel &channel() const { return *m_channel; }
    LoadedDriver &driver() { return m_driver; }

private:
    void prepare(const Items &items);
    void finish(const kit::Sample &sample);
    void observe(ChannelEvent event, const QByteArray &bytes);
    void trace(ChannelEvent event, const QByteArray &bytes);
    void endAttemptsWhenRefused();
    void record(const kit::Sample &sample);

    ChannelSettings m_settings;
    std::unique_ptr<LineChannel> m_channel;
    LoadedDriver m_driver;
    MasterTrace m_trace;
    RecordSink m_record;
    CommandRecord m_command;
    RecordedExchanges m_exchanges;
    LinkCounts m_counts;
    bool m_repeatsRefused = true;
    bool m_hasEndedAttempts = false;
};
