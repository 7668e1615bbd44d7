#pragma once

#include "desk/items/items.h"
#include "desk/link/exchange.h"
#include "desk/link/failure.h"
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

    int stationFor(const Items &items) const;
    /// The last failure, with the driver's text.
    Failure failure();
    /// The exchanges of the last read or write, and how long the last reply took.
    const std::vector<Exchange> &exchanges() const { return m_exchanges; }
    qint64 latencyMicroseconds() const { return m_latency; }

    LineChannel &channel() { return *m_channel; }
    LoadedDriver &driver() { return m_driver; }

private:
    void prepare(const Items &items);
    void finish();
    void observe(ChannelEvent event, const QByteArray &bytes);

    int m_station;
    std::unique_ptr<LineChannel> m_channel;
    LoadedDriver m_driver;
    MasterTrace m_trace;
    qint64 m_sentAt = 0;
    qint64 m_latency = 0;
    std::vector<Exchange> m_exchanges;
    bool m_hasOpened = true;
};
