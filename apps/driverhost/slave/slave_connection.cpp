#include "slave/slave_connection.h"

#include "slave/embedded_slave.h"
#include "trace_frame.h"

#include <sys/socket.h>

#include <utility>

namespace
{

// Longer than any pause within a request on a working network.
const int SilenceMs = 200;
// A master whose TCP had to stop, since its bytes were not taken, may need as long as this to go on.
const int SilenceAfterStopMs = 2000;
// A master that sends and never reads is not read from any more; its requests wait where they are.
const int MostUnread = 65536;
const int MostUnsent = 65536;

bool isBroadcast(const QByteArray &request)
{
    return request.at(0) == 0;
}

// Makes the close that follows a reset: no lingering, no FIN.
void closeWithReset(QTcpSocket &socket)
{
    const linger none = {1, 0};
    setsockopt(static_cast<int>(socket.socketDescriptor()), SOL_SOCKET, SO_LINGER, &none, sizeof none);
    socket.abort();
}

} // namespace

SlaveConnection::SlaveConnection(QTcpSocket *connectedSocket, quint64 connectionNumber, EmbeddedSlave *slave)
    : QObject(slave), owner(slave), socket(connectedSocket), number(connectionNumber)
{
    socket->setParent(this);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    socket->setReadBufferSize(MostUnread);
    silence.setSingleShot(true);
    pause.setSingleShot(true);
    pause.setTimerType(Qt::PreciseTimer);
    connect(socket, &QTcpSocket::readyRead, this, &SlaveConnection::takeBytes);
    connect(socket, &QTcpSocket::bytesWritten, this, &SlaveConnection::catchUp);
    connect(socket, &QTcpSocket::disconnected, this, &SlaveConnection::endConnection);
    connect(&silence, &QTimer::timeout, this, &SlaveConnection::giveUpRequest);
    connect(&pause, &QTimer::timeout, this, &SlaveConnection::goOn);

    traceEventOf(QStringLiteral("connected from %1 port %2")
                     .arg(socket->peerAddress().toString())
                     .arg(socket->peerPort()));
    const QByteArray &banner = owner->settings().banner;
    if (!banner.isEmpty()) {
        if (isTracing())
            traceFrame(FrameDirection::Sent, banner, QStringLiteral("banner"));
        socket->write(banner);
    }
    takeBytes();
}

void SlaveConnection::takeBytes()
{
    wasStopped = wasStopped || socket->bytesAvailable() >= MostUnread;
    // The end of a connection is not seen before its bytes have been taken, also where they are ignored.
    if (!socket->isOpen() || (!isDead && isBusy()))
        return;
    const QByteArray bytes = socket->readAll();
    if (isDead || bytes.isEmpty())
        return;
    deframer.add(bytes);
    takeRequests();
}

void SlaveConnection::takeRequests()
{
    collectRequests();
    reportDropped();
    if (deframer.isPending())
        silence.start(wasStopped ? SilenceAfterStopMs : SilenceMs);
    else
        silence.stop();
    answerNext();
}

// What comes after a silence is a new request, whatever had begun before it.
void SlaveConnection::giveUpRequest()
{
    while (deframer.isPending()) {
        deframer.giveUp();
        collectRequests();
    }
    reportDropped();
    answerNext();
}

void SlaveConnection::collectRequests()
{
    for (QByteArray frame = deframer.next(); !frame.isEmpty(); frame = deframer.next()) {
        reportDropped();
        if (isTracing())
            traceFrame(FrameDirection::Received, frame, describeFrame(FrameRole::Request, frame));
        requests.enqueue(frame);
    }
}

void SlaveConnection::reportDropped()
{
    const QByteArray dropped = deframer.takeDropped();
    if (dropped.isEmpty())
        return;
    owner->countDropped(dropped.size());
    if (isTracing())
        traceFrame(FrameDirection::Dropped, dropped,
                   QStringLiteral("no request: ") + describeFrame(FrameRole::Request, dropped));
}

void SlaveConnection::answerNext()
{
    while (!isAnswering && !isDead && !requests.isEmpty() && socket->bytesToWrite() < MostUnsent)
        answer(requests.dequeue());
}

bool SlaveConnection::isBusy() const
{
    return isAnswering || !requests.isEmpty();
}

void SlaveConnection::catchUp()
{
    answerNext();
    takeBytes();
}

void SlaveConnection::answer(const QByteArray &frame)
{
    if (!owner->isAddressed(frame)) {
        owner->countForeign();
        return;
    }
    request = frame;
    fault = isBroadcast(request) ? Fault() : owner->nextFault();
    // A device that refuses does not execute; every other fault spoils only the reply.
    const QByteArray reply =
        fault.kind == Fault::Exception ? owner->refuse(request) : owner->execute(request);
    if (reply.isEmpty())
        return;
    shape = shapeReply(fault, request, reply, previousReply, owner->faults());
    previousReply = reply;
    isAnswering = true;
    const int wait = owner->settings().latencyMs + shape.delayMs;
    if (wait > 0)
        pause.start(wait);
    else
        startReply();
}

void SlaveConnection::goOn()
{
    if (nextSegment == 0)
        startReply();
    else
        sendSegments();
    catchUp();
}

void SlaveConnection::startReply()
{
    traceReply();
    if (shape.isHeldBack) {
        heldBack += shape.bytes();
        shape.segments.clear();
    } else if (!heldBack.isEmpty() && !shape.segments.isEmpty()) {
        shape.segments.first().prepend(std::exchange(heldBack, QByteArray()));
    }
    sendSegments();
}

void SlaveConnection::sendSegments()
{
    while (!isDead && nextSegment < shape.segments.size()) {
        socket->write(shape.segments.at(nextSegment++));
        socket->flush();
        if (shape.segmentGapMs > 0 && nextSegment < shape.segments.size()) {
            pause.start(shape.segmentGapMs);
            return;
        }
    }
    finishReply();
}

void SlaveConnection::finishReply()
{
    isAnswering = false;
    nextSegment = 0;
    isDead = isDead || shape.ending != ReplyShape::KeepOpen;
    if (shape.ending == ReplyShape::ResetConnection)
        closeWithReset(*socket);
    else if (shape.ending == ReplyShape::CloseConnection)
        socket->disconnectFromHost();
}

void SlaveConnection::endConnection()
{
    isDead = true;
    silence.stop();
    pause.stop();
    traceEventOf(QStringLiteral("disconnected"));
    deleteLater();
}

void SlaveConnection::traceReply() const
{
    if (!isTracing())
        return;
    const QByteArray bytes = shape.bytes();
    const QString label =
        fault.kind == Fault::None ? QString() : QStringLiteral("[%1] ").arg(faultName(fault.kind));
    if (bytes.isEmpty())
        traceEventOf(label + QStringLiteral("nothing sent"));
    else
        traceFrame(FrameDirection::Sent, bytes, label + describeFrame(FrameRole::Reply, bytes, request));
}

void SlaveConnection::traceFrame(FrameDirection direction, const QByteArray &bytes,
                                 const QString &meaning) const
{
    owner->settings().trace(traceLine(QDateTime::currentDateTime(), direction, bytes, tag() + meaning));
}

void SlaveConnection::traceEventOf(const QString &text) const
{
    if (isTracing())
        owner->settings().trace(traceEvent(QDateTime::currentDateTime(), tag() + text));
}

bool SlaveConnection::isTracing() const
{
    return static_cast<bool>(owner->settings().trace);
}

QString SlaveConnection::tag() const
{
    return QStringLiteral("#%1 ").arg(number);
}
