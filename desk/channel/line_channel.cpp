#include "desk/channel/line_channel.h"

namespace
{

const qint64 Millisecond = 1000;
// A slot that is free again has to be taken within two seconds.
const qint64 FirstReopening = 50 * Millisecond;
const qint64 LongestReopening = 1000 * Millisecond;

} // namespace

LineChannel::LineChannel(Line &line, DeviceSetting *device, const ExchangeSettings &settings)
    : m_line(line),
      m_device(device),
      m_settings(settings),
      m_settling(settings, static_cast<quint16>(line.now() / Millisecond)),
      m_asked(-1),
      m_canTell(false),
      m_handedAt(-1),
      m_isWithheld(false),
      m_isEchoing(false),
      m_opening(FirstReopening, LongestReopening),
      m_isAnswered(false),
      m_isEndNoticed(false),
      m_keepsOpen(false)
{
}

bool LineChannel::open()
{
    endExchange();
    m_line.pause(m_opening.until());
    m_stream.takeAll();
    m_isEndNoticed = false;
    m_isAnswered = false;
    if (!m_line.open(m_line.now() + Millisecond * m_settings.connectTimeout)) {
        m_error = m_line.errorString();
        m_opening.fail(m_line.now());
        notify(ChannelEvent::OpenFailed);
        return false;
    }
    notify(ChannelEvent::Opened);
    return true;
}

// Bytes that nobody fetched must not come back after the connection is opened again.
void LineChannel::close()
{
    endExchange();
    noticeEnd();
    if (m_keepsOpen && m_line.state() == LineState::Open && discardUnasked())
        return;
    m_stream.takeAll();
    m_line.close();
    notify(ChannelEvent::Closed);
}

bool LineChannel::isConnected() const
{
    noticeEnd();
    return m_line.state() == LineState::Open;
}

int LineChannel::retryCount() const
{
    return m_line.isCancelled() ? 0 : m_settings.retries;
}

unsigned int LineChannel::delayTime() const
{
    return m_line.isCancelled() ? 0 : m_settings.delay;
}

// When the time-out is over that starts then.
qint64 LineChannel::deadlineAfter(qint64 start) const
{
    return start + Millisecond * m_settings.timeout;
}

// An exchange whose reply was not waited for, or has not come whole.
void LineChannel::endExchange()
{
    if (m_asked >= 0)
        m_settling.noteLoss(m_asked, m_line.now());
    m_asked = -1;
}

void LineChannel::noticeEnd() const
{
    const LineState state = m_line.state();
    if (m_isEndNoticed || (state != LineState::ClosedByOther && state != LineState::ResetByOther))
        return;
    m_isEndNoticed = true;
    if (!m_isAnswered) {
        ++m_strays.deafEnds;
        m_opening.fail(m_line.now());
    } else if (m_asked < 0) {
        ++m_strays.idleEnds;
    }
    notify(state == LineState::ResetByOther ? ChannelEvent::ResetByOther : ChannelEvent::ClosedByOther);
}

void LineChannel::notify(ChannelEvent event, const QByteArray &bytes) const
{
    if (m_observer)
        m_observer(event, bytes);
}
