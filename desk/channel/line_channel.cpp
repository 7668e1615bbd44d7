#include "desk/channel/line_channel.h"

#include "drivers/qt/qt_lines.h"

#include <algorithm>

namespace
{

// Only a device that never stops sends as much unasked.
const int MaxUnasked = 65536;

} // namespace

LineChannel::LineChannel(Line &line, DeviceSetting *device, const ExchangeSettings &settings)
    : m_line(line), m_device(device), m_settings(settings), m_isEndNoticed(false), m_keepsOpen(false)
{
}

int LineChannel::readData(char *buffer, int maxLength)
{
    const qint64 deadline = deadlineAfter(m_settings.timeout);
    while (m_received.size() < maxLength) {
        const QByteArray bytes = m_line.receive(deadline);
        if (bytes.isEmpty())
            break;
        m_received += bytes;
        if (m_line.now() >= deadline)
            break;
    }
    const int size = std::min(maxLength, sizeOf(m_received));
    std::copy(m_received.constData(), m_received.constData() + size, buffer);
    m_received.remove(0, size);
    if (size > 0)
        notify(ChannelEvent::Received, QByteArray(buffer, size));
    if (size < maxLength)
        noticeEnd();
    return size;
}

int LineChannel::writeData(const char *data, int length)
{
    if (!discardUnasked())
        return -1;
    notify(ChannelEvent::Sent, QByteArray(data, length));
    const int sent = m_line.send(data, length, deadlineAfter(m_settings.timeout));
    m_error = m_line.errorString();
    if (sent < length)
        noticeEnd();
    return sent;
}

bool LineChannel::discardUnasked()
{
    QByteArray unasked;
    unasked.swap(m_received);
    for (QByteArray bytes = m_line.receive(m_line.now()); !bytes.isEmpty();
         bytes = m_line.receive(m_line.now())) {
        unasked += bytes;
        if (unasked.size() > MaxUnasked) {
            m_error = QString::fromLatin1("the other side keeps sending without being asked");
            return false;
        }
    }
    if (!unasked.isEmpty())
        notify(ChannelEvent::Discarded, unasked);
    if (m_line.state() == LineState::Open)
        return true;
    m_error = m_line.errorString();
    noticeEnd();
    return false;
}

bool LineChannel::open()
{
    m_received.clear();
    m_isEndNoticed = false;
    if (!m_line.open(deadlineAfter(m_settings.connectTimeout))) {
        m_error = m_line.errorString();
        notify(ChannelEvent::OpenFailed);
        return false;
    }
    notify(ChannelEvent::Opened);
    return true;
}

// Bytes that nobody fetched must not come back after the connection is opened again.
void LineChannel::close()
{
    noticeEnd();
    if (m_keepsOpen && m_line.state() == LineState::Open && discardUnasked())
        return;
    m_received.clear();
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

qint64 LineChannel::deadlineAfter(int milliseconds) const
{
    return m_line.now() + qint64(1000) * milliseconds;
}

void LineChannel::noticeEnd() const
{
    const LineState state = m_line.state();
    if (m_isEndNoticed || (state != LineState::ClosedByOther && state != LineState::ResetByOther))
        return;
    m_isEndNoticed = true;
    notify(state == LineState::ResetByOther ? ChannelEvent::ResetByOther : ChannelEvent::ClosedByOther);
}

void LineChannel::notify(ChannelEvent event, const QByteArray &bytes) const
{
    if (m_observer)
        m_observer(event, bytes);
}
