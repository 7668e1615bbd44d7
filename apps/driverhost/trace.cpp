#include "trace.h"

#include "trace_frame.h"

#include <cstdio>
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

QString clock(const QDateTime &time)
{
    return time.toString(QStringLiteral("HH:mm:ss.zzz"));
}

// Whether nothing more is to come: the reply is as long as the request lets it be, or is no answer to it.
bool isWholeReply(const QByteArray &reply, const QByteArray &request)
{
    const int smallestReply = 5;
    if (reply.size() < smallestReply)
        return false;
    return byteAt(reply, 1) != byteAt(request, 1) || reply.size() >= replySizeFor(request);
}

} // namespace

QString traceLine(const QDateTime &time, FrameDirection direction, const QByteArray &bytes,
                  const QString &meaning)
{
    return QStringLiteral("%1 %2 %3  %4")
        .arg(clock(time), QChar::fromLatin1(mark(direction)), QString::fromLatin1(bytes.toHex(' ').toUpper()),
             meaning);
}

QString traceEvent(const QDateTime &time, const QString &text)
{
    return QStringLiteral("%1 - %2").arg(clock(time), text);
}

TraceSink stderrTrace()
{
    return [](const QString &line) {
        const QByteArray bytes = line.toLocal8Bit() + '\n';
        std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
    };
}

MasterTrace::MasterTrace(TraceSink lineSink) : sink(std::move(lineSink)) {}

MasterTrace::~MasterTrace()
{
    flush();
}

void MasterTrace::sent(const QByteArray &bytes)
{
    if (!sink)
        return;
    flush();
    request = bytes;
    write(FrameDirection::Sent, bytes, describeFrame(FrameRole::Request, bytes));
}

void MasterTrace::received(const QByteArray &bytes)
{
    if (!sink)
        return;
    reply += bytes;
    if (isWholeReply(reply, request))
        flush();
}

void MasterTrace::dropped(const QByteArray &bytes)
{
    if (!sink || bytes.isEmpty())
        return;
    flush();
    write(FrameDirection::Dropped, bytes,
          QStringLiteral("not asked for: ") + describeFrame(FrameRole::Reply, bytes));
}

void MasterTrace::event(const QString &text)
{
    if (!sink)
        return;
    flush();
    sink(traceEvent(QDateTime::currentDateTime(), text));
}

void MasterTrace::flush()
{
    if (!sink || reply.isEmpty())
        return;
    const QByteArray bytes = std::exchange(reply, QByteArray());
    write(FrameDirection::Received, bytes, describeFrame(FrameRole::Reply, bytes, request));
}

void MasterTrace::write(FrameDirection direction, const QByteArray &bytes, const QString &meaning)
{
    sink(traceLine(QDateTime::currentDateTime(), direction, bytes, meaning));
}
