#include "desk/link/session.h"

#include "desk/wire/frame_text.h"
#include "desk/wire/protocol.h"

namespace
{

bool isRefusedForGood(const Exchange &exchange)
{
    const int exception = exceptionIn(exchange);
    return exception >= modbus::IllegalFunction && exception <= modbus::IllegalDataValue;
}

} // namespace

Session::Session(const QString &plugin, const LinkSettings &settings)
    : Session(plugin, settings, std::make_unique<TcpChannel>(settings.channel))
{
}

Session::Session(const QString &plugin, const LinkSettings &settings, std::unique_ptr<LineChannel> channel)
    : m_settings(settings.channel),
      m_channel(std::move(channel)),
      m_driver(plugin),
      m_trace(settings.trace),
      m_record(settings.record)
{
    m_channel->setObserver([this](ChannelEvent event, const QByteArray &bytes) { observe(event, bytes); });
}

std::optional<QByteArray> Session::read(const Items &items)
{
    prepare(items);
    const QByteArray data = m_driver->read(m_channel.get(), items.command());
    finish({items.command(), false, data, m_command.station()});
    if (m_driver->hasError() || data.isEmpty())
        return std::nullopt;
    return data;
}

bool Session::write(const Items &items, const QByteArray &data)
{
    prepare(items);
    const bool isWritten = m_driver->write(m_channel.get(), items.command(), data);
    finish({items.command(), true, data, m_command.station()});
    return isWritten;
}

int Session::stationFor(const Items &items) const
{
    return stationOf(items, m_settings.station);
}

void Session::setTimeout(int timeout)
{
    m_settings.timeout = timeout;
    m_channel->setTimeout(timeout);
}

Failure Session::failure() const
{
    return failureOf(m_driver->getLastError(), m_command);
}

void Session::prepare(const Items &items)
{
    const int station = stationFor(items);
    m_channel->setStation(station);
    m_command.begin(station, m_channel->now());
    m_exchanges.begin();
}

void Session::finish(const kit::Sample &sample)
{
    m_command.end(m_channel->now(), m_channel->isCancelled());
    m_counts.add(m_command);
    m_trace.flush();
    record(sample);
    if (m_hasEndedAttempts)
        m_channel->setRetries(m_settings.retries);
    m_hasEndedAttempts = false;
}

// What went wrong with the connection is no matter of requests and replies, and attempts that were ended
// early have no retry count.
void Session::record(const kit::Sample &sample)
{
    const bool hasFailed = m_driver->hasError();
    const bool isOfTheLine = !m_channel->isCancelled() && !m_hasEndedAttempts && m_command.hasOpened() &&
                             m_command.failedOpenings() == 0;
    if (m_record && (!hasFailed || isOfTheLine))
        m_record(m_exchanges.recording(sample, hasFailed ? m_driver->getLastError() : QString()));
}

void Session::observe(ChannelEvent event, const QByteArray &bytes)
{
    m_command.add(event, bytes, m_channel->now());
    m_exchanges.add(event, bytes);
    trace(event, bytes);
    if (event == ChannelEvent::Received && !m_repeatsRefused)
        endAttemptsWhenRefused();
}

// The driver asks the channel after each attempt whether there is another one.
void Session::endAttemptsWhenRefused()
{
    if (!isRefusedForGood(m_command.exchanges().back()))
        return;
    m_channel->setRetries(0);
    m_hasEndedAttempts = true;
}

void Session::trace(ChannelEvent event, const QByteArray &bytes)
{
    switch (event) {
    case ChannelEvent::Opened: m_trace.event(QStringLiteral("connected")); break;
    case ChannelEvent::OpenFailed: m_trace.event(m_channel->errorString()); break;
    case ChannelEvent::ClosedByOther: m_trace.event(QStringLiteral("closed by the other side")); break;
    case ChannelEvent::ResetByOther: m_trace.event(QStringLiteral("reset by the other side")); break;
    case ChannelEvent::Closed:
        // There was nothing left to close.
        if (!m_command.isEndedByOther())
            m_trace.event(QStringLiteral("closed"));
        break;
    case ChannelEvent::SkippedNoise: m_trace.skipped(bytes, QStringLiteral("noise")); break;
    case ChannelEvent::SkippedFrame:
        m_trace.skipped(bytes,
                        QStringLiteral("of another exchange: ") + describeFrame(FrameRole::Reply, bytes));
        break;
    case ChannelEvent::SkippedCopy: m_trace.skipped(bytes, QStringLiteral("the request, echoed")); break;
    case ChannelEvent::ProbeSent: m_trace.sent(bytes); break;
    case ChannelEvent::ProbeAnswered: m_trace.received(bytes); break;
    case ChannelEvent::Withheld:
        m_trace.event(QStringLiteral("not sent: a reply may still come that could be taken for the answer"));
        break;
    case ChannelEvent::Discarded: m_trace.dropped(bytes); break;
    case ChannelEvent::Sent: m_trace.sent(bytes); break;
    case ChannelEvent::Received: m_trace.received(bytes); break;
    }
}
