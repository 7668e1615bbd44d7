#pragma once

#include "desk/channel/channel_event.h"
#include "desk/link/exchange.h"

#include <vector>

/// What happened on the line while the driver carried out one command.
class CommandRecord
{
public:
    /// Times are in microseconds of one clock.
    void begin(int station, qint64 now);
    void add(ChannelEvent event, const QByteArray &bytes, qint64 now);
    /// The command is over; \a isGivenUp: because nobody waited any longer.
    void end(qint64 now, bool isGivenUp);

    /// Between its beginning and its end.
    bool isRunning() const { return m_isRunning; }
    int station() const { return m_station; }
    const std::vector<Exchange> &exchanges() const { return m_exchanges; }
    /// How often the driver tried: sent the command's first request, or could not open the line for it.
    int attempts() const { return m_attempts; }
    /// From the beginning of the last request's sending to the end of what came.
    qint64 latency() const { return m_latency; }
    /// The whole command, with all its attempts and pauses.
    qint64 duration() const { return m_endedAt - m_beganAt; }
    qint64 beganAt() const { return m_beganAt; }
    /// When the last request was sent; when the command began where none was.
    qint64 sentAt() const { return m_sentAt; }

    /// False when the last attempt ended because the line could not be opened.
    bool hasOpened() const { return m_hasOpened; }
    /// Whether the other side ended the connection before the last reply was whole.
    bool isEndedByOther() const;
    /// Whether the last request came back, as its reply or in front of it.
    bool isEchoed() const;
    /// How many attempts were not sent, since a late reply could have been taken for the answer; and whether
    /// the last one was not.
    int withheld() const { return m_withheld; }
    bool isWithheld() const { return m_isWithheld; }
    /// How often the line was opened and could not be opened, and how often the other side ended it.
    int openings() const { return m_openings; }
    int failedOpenings() const { return m_failedOpenings; }
    int endsByOther() const { return m_endsByOther; }
    int skippedBytes() const { return m_skippedBytes; }
    int discardedBytes() const { return m_discardedBytes; }

private:
    void addAttempt(const QByteArray &request);
    void addSent(const QByteArray &bytes, qint64 now);
    void addReceived(const QByteArray &bytes, qint64 now);
    void addEnd();

    bool m_isRunning = false;
    int m_station = 0;
    std::vector<Exchange> m_exchanges;
    QByteArray m_firstRequest;
    int m_attempts = 0;
    int m_withheld = 0;
    bool m_isWithheld = false;
    qint64 m_beganAt = 0;
    qint64 m_sentAt = 0;
    qint64 m_latency = 0;
    qint64 m_endedAt = 0;
    bool m_hasOpened = true;
    int m_openings = 0;
    int m_failedOpenings = 0;
    int m_endsByOther = 0;
    int m_skippedBytes = 0;
    int m_discardedBytes = 0;
};
