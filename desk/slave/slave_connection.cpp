#include "desk/slave/slave_connection.h"

#include "desk/slave/embedded_slave.h"
#include "desk/wire/frame_text.h"
#include "desk/wire/rtu_frame.h"
#include "drivers/qt/qt_lines.h"

#include <sys/socket.h>

#include <algorithm>
#include <utility>

namespace
{

// Longer than any pause within a request on a working network.
const int SilenceMs = 200;
// A master whose TCP had to stop, since its bytes were not taken, may need as long as this to go on.
const int SilenceAfterStopMs = 2000;
// A master that sends and never reads is not read from any more; its requests wait where they are.
const int MaxUnread = 65536;
const int MaxUnsent = 65536;

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
    : QObject(slave), m_owner(slave), m_socket(connectedSocket), m_number(connectionNumber)
{
    m_socket->setParent(this);
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_socket->setReadBufferSize(MaxUnread);
    m_silence.setSingleShot(true);
    m_pause.setSingleShot(true);
    m_pause.setTimerType(Qt::PreciseTimer);
    connect(m_socket, &QTcpSocket::readyRead, this, &SlaveConnection::takeBytes);
    connect(m_socket, &QTcpSocket::bytesWritten, this, &SlaveConnection::catchUp);
    connect(m_socket, &QTcpSocket::disconnected, this, &SlaveConnection::endConnection);
    connect(&m_silence, &QTimer::timeout, this, &SlaveConnection::giveUpRequest);
    connect(&m_pause, &QTimer::timeout, this, &SlaveConnection::goOn);

    traceEventOf(QStringLiteral("connected from %1 port %2")
                     .arg(m_socket->peerAddress().toString())
                     .arg(m_socket->peerPort()));
    followHabits();
    takeBytes();
}

void SlaveConnection::followHabits()
{
    const GatewayHabits &gateway = m_owner->settings().gateway;
    if (!gateway.banner.isEmpty())
        sendUnasked(gateway.banner, QStringLiteral("banner"));
    connect(&m_heartbeat, &QTimer::timeout, this, [this, &gateway] {
        // Not into the middle of a reply that goes out in segments.
        if (m_nextSegment == 0)
            sendUnasked(gateway.heartbeat, QStringLiteral("heartbeat"));
    });
    if (gateway.heartbeatMs > 0)
        m_heartbeat.start(gateway.heartbeatMs);
    m_idle.setSingleShot(true);
    connect(&m_idle, &QTimer::timeout, m_socket, &QTcpSocket::disconnectFromHost);
    if (gateway.idleCloseMs > 0)
        m_idle.start(gateway.idleCloseMs);
}

void SlaveConnection::sendUnasked(const QByteArray &bytes, const QString &meaning)
{
    if (m_isDead)
        return;
    if (isTracing())
        traceFrame(FrameDirection::Sent, bytes, meaning);
    m_socket->write(bytes);
}

void SlaveConnection::takeBytes()
{
    m_wasStopped = m_wasStopped || m_socket->bytesAvailable() >= MaxUnread;
    // The end of a connection is not seen before its bytes have been taken, also where they are ignored.
    if (!m_socket->isOpen() || (!m_isDead && isBusy()))
        return;
    const QByteArray bytes = m_socket->readAll();
    if (m_isDead || bytes.isEmpty())
        return;
    if (m_idle.isActive())
        m_idle.start();
    m_deframer.add(bytes);
    takeRequests();
}

void SlaveConnection::takeRequests()
{
    collectRequests();
    reportDropped();
    if (m_deframer.isPending())
        m_silence.start(m_wasStopped ? SilenceAfterStopMs : SilenceMs);
    else
        m_silence.stop();
    answerNext();
}

// What comes after a silence is a new request, whatever had begun before it.
void SlaveConnection::giveUpRequest()
{
    while (m_deframer.isPending()) {
        m_deframer.giveUp();
        collectRequests();
    }
    reportDropped();
    answerNext();
}

void SlaveConnection::collectRequests()
{
    for (QByteArray frame = m_deframer.next(); !frame.isEmpty(); frame = m_deframer.next()) {
        reportDropped();
        if (isTracing())
            traceFrame(FrameDirection::Received, frame, describeFrame(FrameRole::Request, frame));
        m_requests.enqueue(frame);
    }
}

void SlaveConnection::reportDropped()
{
    const QByteArray dropped = m_deframer.takeDropped();
    if (dropped.isEmpty())
        return;
    m_owner->countDropped(sizeOf(dropped));
    if (isTracing())
        traceFrame(FrameDirection::Dropped, dropped,
                   QStringLiteral("no request: ") + describeFrame(FrameRole::Request, dropped));
}

void SlaveConnection::answerNext()
{
    while (!m_isAnswering && !m_isDead && !m_requests.isEmpty() && m_socket->bytesToWrite() < MaxUnsent)
        answer(m_requests.dequeue());
}

bool SlaveConnection::isBusy() const
{
    return m_isAnswering || !m_requests.isEmpty();
}

void SlaveConnection::catchUp()
{
    answerNext();
    takeBytes();
}

void SlaveConnection::answer(const QByteArray &frame)
{
    if (!m_owner->isAddressed(frame)) {
        m_owner->countForeign();
        return;
    }
    m_request = frame;
    m_fault = isBroadcast(m_request) ? Fault() : m_owner->nextFault();
    // A device that refuses does not execute; every other fault spoils only the reply.
    const QByteArray reply =
        m_fault.kind == Fault::Exception ? m_owner->refuse(m_request) : m_owner->execute(m_request);
    if (reply.isEmpty())
        return;
    m_shape = shapeReply(m_fault, m_request, reply, m_previousReply, m_owner->faults());
    m_previousReply = reply;
    m_isAnswering = true;
    const int wait = std::max(m_owner->settings().latencyMs + m_shape.delayMs, m_owner->busyMs());
    if (wait > 0)
        m_pause.start(wait);
    else
        startReply();
}

void SlaveConnection::goOn()
{
    if (m_nextSegment == 0)
        startReply();
    else
        sendSegments();
    catchUp();
}

void SlaveConnection::startReply()
{
    traceReply();
    if (m_shape.lateMs > 0) {
        m_owner->sendLate(m_shape.bytes(), m_shape.lateMs);
        m_shape.segments.clear();
    } else if (m_shape.isHeldBack) {
        m_heldBack += m_shape.bytes();
        m_shape.segments.clear();
    } else if (!m_heldBack.isEmpty() && !m_shape.segments.isEmpty()) {
        m_shape.segments.first().prepend(std::exchange(m_heldBack, QByteArray()));
    }
    sendSegments();
}

void SlaveConnection::sendSegments()
{
    while (!m_isDead && m_nextSegment < m_shape.segments.size()) {
        m_socket->write(m_shape.segments.at(m_nextSegment++));
        m_socket->flush();
        if (m_shape.segmentGapMs > 0 && m_nextSegment < m_shape.segments.size()) {
            m_pause.start(m_shape.segmentGapMs);
            return;
        }
    }
    finishReply();
}

void SlaveConnection::finishReply()
{
    m_isAnswering = false;
    m_nextSegment = 0;
    m_isDead = m_isDead || m_shape.ending != ReplyShape::KeepOpen;
    if (m_shape.ending == ReplyShape::ResetConnection)
        closeWithReset(*m_socket);
    else if (m_shape.ending == ReplyShape::CloseConnection)
        m_socket->disconnectFromHost();
}

void SlaveConnection::endConnection()
{
    m_isDead = true;
    m_silence.stop();
    m_pause.stop();
    m_heartbeat.stop();
    m_idle.stop();
    m_owner->freeSlot();
    traceEventOf(QStringLiteral("disconnected"));
    deleteLater();
}

void SlaveConnection::traceReply() const
{
    if (!isTracing())
        return;
    const QByteArray bytes = m_shape.bytes();
    const QString label =
        m_fault.kind == Fault::None ? QString() : QStringLiteral("[%1] ").arg(faultName(m_fault.kind));
    if (bytes.isEmpty())
        traceEventOf(label + QStringLiteral("nothing sent"));
    else
        traceFrame(FrameDirection::Sent, bytes, label + describeFrame(FrameRole::Reply, bytes, m_request));
}

void SlaveConnection::traceFrame(FrameDirection direction, const QByteArray &bytes,
                                 const QString &meaning) const
{
    m_owner->settings().trace(traceLine(QDateTime::currentDateTime(), direction, bytes, tag() + meaning));
}

void SlaveConnection::traceEventOf(const QString &text) const
{
    if (isTracing())
        m_owner->settings().trace(traceEvent(QDateTime::currentDateTime(), tag() + text));
}

bool SlaveConnection::isTracing() const
{
    return static_cast<bool>(m_owner->settings().trace);
}

QString SlaveConnection::tag() const
{
    return QStringLiteral("#%1 ").arg(m_number);
}
