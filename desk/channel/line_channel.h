#pragma once

#include "desk/channel/backoff.h"
#include "desk/channel/channel_event.h"
#include "desk/channel/exchange_settings.h"
#include "desk/channel/line.h"
#include "desk/channel/reply_finder.h"
#include "desk/channel/settling.h"
#include "desk/channel/stray_counts.h"
#include "desk/channel/timed_bytes.h"
#include "host/abstract_device_interface.h"

#include <QSet>

/// The channel that a driver gets, made of a line. It finds the reply in what the line brings, and settles
/// the line before it sends where an older reply may still come. Requests that are no RTU frames, and those
/// whose replies cannot be told, pass through as they are. Every operation blocks the caller.
class LineChannel : public AbstractDeviceInterface
{
public:
    /// Line and device setting stay the caller's and outlive the channel.
    LineChannel(Line &line, DeviceSetting *device, const ExchangeSettings &settings);
    LineChannel(const LineChannel &) = delete;
    LineChannel &operator=(const LineChannel &) = delete;

    /// Waits for the whole reply before it hands over its first bytes; when the time is over it hands over
    /// what has come, as it came.
    int readData(char *buffer, int maxLength) override;
    /// Throws away first what arrived unasked, and settles the line of the station. Where that takes longer
    /// than a time-out nothing is sent, and nothing will be received.
    int writeData(const char *data, int length) override;
    /// Waits first where connections have failed before, longer each time.
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
    void setTimeout(int timeout)
    {
        m_settings.timeout = timeout;
        m_settling.setTimeout(timeout);
    }
    /// While it keeps its line open, close() only throws away what has come; what comes later goes before the
    /// next request. For asking stations that may not be there.
    void setKeepsOpen(bool keepsOpen) { m_keepsOpen = keepsOpen; }
    void setObserver(const ChannelObserver &observer) { m_observer = observer; }
    /// While \a cancelled answers true nothing is waited for and nothing tried again.
    void setCancelled(const std::function<bool()> &cancelled) { m_line.setCancelled(cancelled); }
    bool isCancelled() const { return m_line.isCancelled(); }
    /// The line's clock, in microseconds.
    qint64 now() const { return m_line.now(); }
    const ExchangeSettings &settings() const { return m_settings; }
    const StrayCounts &strays() const { return m_strays; }
    const Settling &settling() const { return m_settling; }
    Settling &settling() { return m_settling; }
    /// When the next connection may be opened without a wait.
    qint64 opensAt() const { return m_opening.until(); }

private:
    // Only a device that never stops sends as much unasked.
    static const int MaxUnasked = 65536;

    qint64 deadlineAfter(qint64 start) const;
    bool receive(qint64 deadline);
    void awaitReply(qint64 deadline);
    void takeReply(ReplyFinder::Verdict verdict);
    void giveUpReply();
    void skip(const SkippedPart &part, const QByteArray &bytes);
    int handOver(char *buffer, int maxLength);
    void endExchange();
    bool settle(int station);
    void awaitSettled(int station, qint64 deadline);
    void noteAnswer();
    bool sendProbe(int station);
    int withhold(const QByteArray &request);
    int sendRequest(const QByteArray &request);
    bool discardUnasked();
    void noteUnasked(QByteArray &stream);
    void noteNoise(const QByteArray &bytes);
    void noteFrame(const QByteArray &frame, ChannelEvent event);
    void noticeEnd() const;
    void notify(ChannelEvent event, const QByteArray &bytes = QByteArray()) const;

    Line &m_line;
    DeviceSetting *m_device;
    ExchangeSettings m_settings;
    Settling m_settling;
    ChannelObserver m_observer;
    QString m_error;

    int m_asked; // the station whose reply is waited for; -1 for none that can be told
    ReplyFinder m_finder;
    TimedBytes m_stream; // received and not handed over
    bool m_canTell;      // replies of the last request
    qint64 m_handedAt;   // when the last byte of its reply came that was handed over; -1 before the first
    bool m_isWithheld;
    bool m_isEchoing;

    QSet<int> m_askedStations;
    mutable StrayCounts m_strays;
    mutable Backoff m_opening;
    mutable bool m_isAnswered; // since the connection was opened
    mutable bool m_isEndNoticed;
    bool m_keepsOpen;
};
