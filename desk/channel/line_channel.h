#pragma once

#include "desk/channel/channel_event.h"
#include "desk/channel/exchange_settings.h"
#include "desk/channel/line.h"
#include "host/abstract_device_interface.h"

/// The channel that a driver gets, made of a line. Every operation blocks the caller.
class LineChannel : public AbstractDeviceInterface
{
public:
    /// Line and device setting stay the caller's and outlive the channel.
    LineChannel(Line &line, DeviceSetting *device, const ExchangeSettings &settings);
    LineChannel(const LineChannel &) = delete;
    LineChannel &operator=(const LineChannel &) = delete;

    int readData(char *buffer, int maxLength) override;
    /// Throws away first what arrived unasked: a reply that came too late, or the tail of one that was
    /// refused, must not be taken for the answer to this request.
    int writeData(const char *data, int length) override;
    bool open() override;
    void close() override;
    DeviceSetting *deviceSetting() const override { return m_device; }
    /// False also when the other side has closed the connection meanwhile.
    bool isConnected() const override;
    int retryCount() const override;
    int stationId() const override { return m_settings.station; }
    unsigned int delayTime() const override;
    QString errorString() const override { return m_error; }

    void setStation(int station) { m_settings.station = station; }
    void setRetries(int retries) { m_settings.retries = retries; }
    void setTimeout(int timeout) { m_settings.timeout = timeout; }
    /// While it keeps its line open, close() only throws away what has come; what comes later goes before the
    /// next request. For asking stations that may not be there.
    void setKeepsOpen(bool keepsOpen) { m_keepsOpen = keepsOpen; }
    void setObserver(const ChannelObserver &observer) { m_observer = observer; }
    /// While \a cancelled answers true nothing is waited for and nothing tried again.
    void setCancelled(const std::function<bool()> &cancelled) { m_line.setCancelled(cancelled); }
    bool isCancelled() const { return m_line.isCancelled(); }
    /// The line's clock, in microseconds.
    qint64 now() const { return m_line.now(); }

private:
    qint64 deadlineAfter(int milliseconds) const;
    bool discardUnasked();
    void noticeEnd() const;
    void notify(ChannelEvent event, const QByteArray &bytes = QByteArray()) const;

    Line &m_line;
    DeviceSetting *m_device;
    ExchangeSettings m_settings;
    ChannelObserver m_observer;
    QString m_error;
    QByteArray m_received; // and not fetched yet
    mutable bool m_isEndNoticed;
    bool m_keepsOpen;
};
