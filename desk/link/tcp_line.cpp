#include "desk/link/tcp_line.h"

#include "desk/items/target.h"

#include <QEventLoop>
#include <QNetworkProxy>
#include <QTcpSocket>
#include <QTimer>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

// Waits are cut into slices so that a cancelled run does not sit out its time-out.
const int Slice = 50; // milliseconds
const int ChunkSize = 16384;

// Rounded up: a wait never ends before its time.
int millisecondsOf(qint64 microseconds)
{
    return static_cast<int>(std::clamp<qint64>((microseconds + 999) / 1000, 0, Slice));
}

bool wouldBlock(int error)
{
    return error == EAGAIN || error == EINTR;
}

int pendingErrorOf(int descriptor)
{
    int error = 0;
    socklen_t size = sizeof error;
    getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &error, &size);
    return error;
}

// Why there is no connection.
QString reasonOf(const QTcpSocket &connector)
{
    if (connector.state() != QAbstractSocket::UnconnectedState)
        return QStringLiteral("no answer");
    if (connector.error() == QAbstractSocket::HostNotFoundError)
        return QLatin1String(UnknownHost);
    return connector.errorString();
}

} // namespace

bool TcpLine::open(qint64 deadline)
{
    close();
    const QString host = m_device.socketIP(-1);
    const quint16 port = m_device.port(-1);
    QTcpSocket connector;
    connector.setProxy(QNetworkProxy::NoProxy);
    connector.connectToHost(host, port);
    if (!waitUntilConnected(connector, deadline)) {
        m_error =
            QStringLiteral("cannot connect to %1: %2").arg(endpointText(host, port), reasonOf(connector));
        connector.abort();
        return false;
    }
    connector.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    // The connector would take bytes out of the socket whenever an event loop runs in this thread.
    m_descriptor = fcntl(static_cast<int>(connector.socketDescriptor()), F_DUPFD_CLOEXEC, 0);
    connector.abort();
    m_state = LineState::Open;
    return true;
}

// The socket's own waitForConnected() gives up for good when its time is over, so it cannot be asked in
// slices; and it looks names up without any limit.
bool TcpLine::waitUntilConnected(QTcpSocket &connector, qint64 deadline) const
{
    QEventLoop loop;
    QTimer slices;
    QObject::connect(&slices, &QTimer::timeout, &loop, [&] {
        if (isCancelled() || now() >= deadline)
            loop.quit();
    });
    QObject::connect(
        &connector, &QAbstractSocket::stateChanged, &loop, [&](QAbstractSocket::SocketState state) {
            if (state == QAbstractSocket::ConnectedState || state == QAbstractSocket::UnconnectedState)
                loop.quit();
        });
    if (connector.state() == QAbstractSocket::HostLookupState ||
        connector.state() == QAbstractSocket::ConnectingState) {
        slices.start(millisecondsOf(deadline - now()));
        loop.exec();
    }
    return connector.state() == QAbstractSocket::ConnectedState;
}

void TcpLine::close()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
    m_state = LineState::Closed;
}

LineState TcpLine::state()
{
    if (m_state == LineState::Open) {
        pollfd waiting = {m_descriptor, POLLRDHUP, 0};
        if (poll(&waiting, 1, 0) > 0)
            noteEnd((waiting.revents & POLLERR) != 0 ? pendingErrorOf(m_descriptor) : 0);
    }
    return m_state;
}

int TcpLine::send(const char *bytes, int size, qint64 deadline)
{
    int sent = 0;
    while (sent < size && m_state == LineState::Open) {
        const ssize_t count =
            ::send(m_descriptor, bytes + sent, static_cast<size_t>(size - sent), MSG_NOSIGNAL);
        if (count >= 0) {
            sent += static_cast<int>(count);
        } else if (!wouldBlock(errno)) {
            noteEnd(errno);
        } else if (!waitFor(POLLOUT, deadline)) {
            m_error = QStringLiteral("Network operation timed out");
            break;
        }
    }
    return sent;
}

QByteArray TcpLine::receive(qint64 deadline)
{
    while (m_descriptor >= 0) {
        QByteArray bytes(ChunkSize, Qt::Uninitialized);
        const ssize_t count = recv(m_descriptor, bytes.data(), static_cast<size_t>(bytes.size()), 0);
        if (count > 0) {
            bytes.resize(static_cast<int>(count));
            return bytes;
        }
        if (count == 0 || !wouldBlock(errno)) {
            noteEnd(count == 0 ? 0 : errno);
            break;
        }
        if (!waitFor(POLLIN, deadline))
            break;
    }
    return {};
}

void TcpLine::pause(qint64 until)
{
    while (!isCancelled() && now() < until)
        poll(nullptr, 0, millisecondsOf(until - now()));
}

// False when the time is over or the run is cancelled.
bool TcpLine::waitFor(short events, qint64 deadline) const
{
    while (!isCancelled()) {
        const qint64 left = deadline - now();
        if (left <= 0)
            return false;
        pollfd waiting = {m_descriptor, events, 0};
        if (poll(&waiting, 1, millisecondsOf(left)) > 0)
            return true;
    }
    return false;
}

void TcpLine::noteEnd(int error)
{
    m_error = QStringLiteral("The remote host closed the connection");
    if (m_state == LineState::Open)
        m_state = error == 0 ? LineState::ClosedByOther : LineState::ResetByOther;
}

qint64 TcpLine::now() const
{
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return qint64(time.tv_sec) * 1000000 + time.tv_nsec / 1000;
}
