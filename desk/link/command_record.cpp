#include "desk/link/command_record.h"

#include "desk/wire/rtu_frame.h"
#include "drivers/qt/qt_lines.h"

void CommandRecord::begin(int station, qint64 now)
{
    *this = CommandRecord();
    m_isRunning = true;
    m_station = station;
    m_beganAt = now;
    m_sentAt = now;
}

void CommandRecord::add(ChannelEvent event, const QByteArray &bytes, qint64 now)
{
    switch (event) {
    case ChannelEvent::Opened:
        m_hasOpened = true;
        ++m_openings;
        break;
    case ChannelEvent::OpenFailed:
        m_hasOpened = false;
        ++m_failedOpenings;
        ++m_attempts;
        break;
    case ChannelEvent::Sent: addSent(bytes, now); break;
    case ChannelEvent::Received: addReceived(bytes, now); break;
    case ChannelEvent::Discarded: m_discardedBytes += sizeOf(bytes); break;
    case ChannelEvent::ClosedByOther:
    case ChannelEvent::ResetByOther: addEnd(); break;
    case ChannelEvent::SkippedCopy:
        if (!m_exchanges.empty())
            m_exchanges.back().isEchoed = true;
        m_skippedBytes += sizeOf(bytes);
        break;
    case ChannelEvent::SkippedNoise:
    case ChannelEvent::SkippedFrame: m_skippedBytes += sizeOf(bytes); break;
    case ChannelEvent::Withheld:
        addAttempt(bytes);
        ++m_withheld;
        m_isWithheld = true;
        break;
    case ChannelEvent::ProbeSent:
    case ChannelEvent::ProbeAnswered:
    case ChannelEvent::Closed: break;
    }
}

void CommandRecord::end(qint64 now, bool isGivenUp)
{
    m_isRunning = false;
    m_endedAt = now;
    if (!m_exchanges.empty())
        m_exchanges.back().isGivenUp = isGivenUp;
}

bool CommandRecord::isEndedByOther() const
{
    return !m_exchanges.empty() && outcomeOf(m_exchanges.back()) == Outcome::ConnectionEnded;
}

bool CommandRecord::isEchoed() const
{
    return !m_exchanges.empty() &&
           (m_exchanges.back().isEchoed || isEcho(m_exchanges.back().reply, m_exchanges.back().request));
}

// Every attempt begins with the same request, and no other request of the command is equal to that.
void CommandRecord::addAttempt(const QByteArray &request)
{
    if (m_firstRequest.isEmpty())
        m_firstRequest = request;
    if (request == m_firstRequest)
        ++m_attempts;
}

void CommandRecord::addSent(const QByteArray &bytes, qint64 now)
{
    addAttempt(bytes);
    m_isWithheld = false;
    m_exchanges.push_back({bytes, {}});
    m_sentAt = now;
}

void CommandRecord::addReceived(const QByteArray &bytes, qint64 now)
{
    if (!m_exchanges.empty())
        m_exchanges.back().reply += bytes;
    m_latency = now - m_sentAt;
}

// An end that is noticed before anything was sent is that of a connection that has been idle.
void CommandRecord::addEnd()
{
    ++m_endsByOther;
    if (!m_exchanges.empty())
        m_exchanges.back().isEndedByOther = true;
}
