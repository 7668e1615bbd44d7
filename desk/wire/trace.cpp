#include "desk/wire/trace.h"

#include "desk/time_text.h"
#include "desk/wire/frame_text.h"
#include "desk/wire/rtu_frame.h"
#include "drivers/qt/qt_lines.h"

#include <algorithm>
#include <utility>

namespace
{

char mark(FrameDirection direction)
{
    switch (direction) {
    case FrameDirection::Sent: return '>';
    case FrameDirection::Received: return '<';
    case FrameDirection::Dropped: break;
    }
    return '!';
}

// Whether nothing more is to come: the reply is as long as the request lets it be, or is no answer to it.
bool isWholeReply(const QByteArray &reply, const QByteArray &request)
{
    if (reply.size() < modbus::ExceptionReplySize)
        return false;
    return functionOf(reply) != functionOf(request) || reply.size() >= replySizeFor(request);
}

} // namespace

QString traceLine(const QDateTime &time, FrameDirection direction, const QByteArray &bytes,
                  const QString &meaning)
{
    return QStringLiteral("%1 %2 %3  %4")
        .arg(clockText(time), QChar::fromLatin1(mark(direction)),
             QString::fromLatin1(bytes.toHex(' ').toUpper()), meaning);
}

QString traceEvent(const QDateTime &time, const QString &text)
{
    return QStringLiteral("%1 - %2").arg(clockText(time), text);
}

MasterTrace::MasterTrace(TraceSink sink) : m_sink(std::move(sink)) {}

MasterTrace::~MasterTrace()
{
    flush();
}

void MasterTrace::sent(const QByteArray &bytes)
{
    if (!m_sink)
        return;
    flush();
    m_refused.clear();
    m_request = bytes;
    write(FrameDirection::Sent, bytes, describeFrame(FrameRole::Request, bytes));
}

void MasterTrace::received(const QByteArray &bytes)
{
    if (!m_sink)
        return;
    m_reply += bytes;
    if (isWholeReply(m_reply, m_request))
        flush();
}

void MasterTrace::dropped(const QByteArray &bytes)
{
    if (!m_sink || bytes.isEmpty())
        return;
    flush();
    const QByteArray rest = bytes.left(restSize(bytes));
    const QByteArray others = bytes.mid(rest.size());
    const QByteArray whole = std::exchange(m_refused, QByteArray()) + rest;
    if (!rest.isEmpty())
        write(FrameDirection::Dropped, rest,
              QStringLiteral("the rest of the frame above: ") +
                  describeFrame(FrameRole::Reply, whole, m_request));
    if (!others.isEmpty())
        write(FrameDirection::Dropped, others,
              QStringLiteral("not asked for: ") + describeFrame(FrameRole::Reply, others));
}

// How many of the bytes the frame lacks that was refused after its beginning. Where its own bytes do not say
// its length, all that came with it is its rest.
int MasterTrace::restSize(const QByteArray &dropped) const
{
    if (m_refused.isEmpty())
        return 0;
    const bool isEchoed = isEcho(m_refused, m_request);
    const int size = isEchoed ? sizeOf(m_request) : replySize(m_refused + dropped);
    return size == SizeUnknown ? sizeOf(dropped) : std::clamp(size - sizeOf(m_refused), 0, sizeOf(dropped));
}

void MasterTrace::skipped(const QByteArray &bytes, const QString &reason)
{
    if (!m_sink)
        return;
    flush();
    write(FrameDirection::Dropped, bytes, QStringLiteral("skipped, ") + reason);
}

void MasterTrace::event(const QString &text)
{
    if (!m_sink)
        return;
    flush();
    m_refused.clear();
    m_sink(traceEvent(QDateTime::currentDateTime(), text));
}

void MasterTrace::flush()
{
    if (!m_sink || m_reply.isEmpty())
        return;
    m_refused = std::exchange(m_reply, QByteArray());
    write(FrameDirection::Received, m_refused, describeFrame(FrameRole::Reply, m_refused, m_request));
}

void MasterTrace::write(FrameDirection direction, const QByteArray &bytes, const QString &meaning)
{
    m_sink(traceLine(QDateTime::currentDateTime(), direction, bytes, meaning));
}
