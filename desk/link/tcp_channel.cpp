#include "desk/link/tcp_channel.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QNetworkProxy>
#include <QTimer>

#include <algorithm>
#include <sys/socket.h>
#include <utility>

namespace
{

// Waits are cut into slices so that a cancelled run does not sit out its time-out.
const int Slice = 50;
// Only a device that never stops sends as much unasked.
const int MaxUnasked = 65536;

DeviceSetting deviceFor(const ChannelSettings &settings)
{
    DeviceSetting device(DefaultDeviceType, settings.device, 9600, 8, 0, 2);
    device.setSocketData({{settings.host, QString::number(settings.port)}});
    return device;
}

bool hasPeerClosed(qintptr descriptor)
{
    char byte = 0;
    return recv(static_cast<int>(descriptor), &byte, 1, MSG_PEEK | MSG_DONTWAIT) == 0;
}

} // namespace

TcpChannel::TcpChannel(const ChannelSettings &settings) : m_settings(settings), m_device(deviceFor(settings))
{
    m_socket.setProxy(QNetworkProxy::NoProxy);
}

int TcpChannel::readData(char *buffer, int maxLength)
{
    QElapsedTimer clock;
    clock.start();
    while (m_socket.bytesAvailable() < maxLength && !isCancelled() &&
           m_socket.state() == QAbstractSocket::ConnectedState) {
        const qint64 left = m_settings.timeout - clock.elapsed();
        if (left <= 0)
            break;
        m_socket.waitForReadyRead(static_cast<int>(std::min<qint64>(left, Slice)));
    }
    const int received = static_cast<int>(m_socket.read(buffer, maxLength));
    if (received > 0)
        notify(ChannelEvent::Received, QByteArray(buffer, received));
    return received;
}

int TcpChannel::writeData(const char *data, int length)
{
    if (!discardUnasked())
        return -1;
    // Before the first byte leaves: the slave's reply may come faster than this side goes on.
    notify(ChannelEvent::Sent, QByteArray(data, length));
    m_socket.write(data, length);
    const bool sent = sendAll();
    m_error = m_socket.errorString();
    return sent ? length : length - static_cast<int>(m_socket.bytesToWrite());
}

bool TcpChannel::sendAll()
{
    QElapsedTimer clock;
    clock.start();
    while (m_socket.bytesToWrite() > 0 && !isCancelled()) {
        const qint64 left = m_settings.timeout - clock.elapsed();
        if (left <= 0 || m_socket.state() != QAbstractSocket::ConnectedState)
            return false;
        m_socket.waitForBytesWritten(static_cast<int>(std::min<qint64>(left, Slice)));
    }
    return m_socket.bytesToWrite() == 0;
}

bool TcpChannel::discardUnasked()
{
    QByteArray unasked;
    while (m_socket.bytesAvailable() > 0 ||
           (m_socket.state() == QAbstractSocket::ConnectedState && m_socket.waitForReadyRead(0))) {
        unasked += m_socket.readAll();
        if (unasked.size() > MaxUnasked) {
            m_error = QStringLiteral("the other side keeps sending without being asked");
            return false;
        }
    }
    if (!unasked.isEmpty())
        notify(ChannelEvent::Discarded, unasked);
    if (m_socket.state() == QAbstractSocket::ConnectedState)
        return true;
    m_error = m_socket.errorString();
    return false;
}

bool TcpChannel::open()
{
    m_socket.abort();
    m_socket.connectToHost(m_settings.host, m_settings.port);
    if (!waitUntilConnected()) {
        const bool hasTimedOut = m_socket.state() != QAbstractSocket::UnconnectedState;
        m_error = QStringLiteral("cannot connect to %1: %2")
                      .arg(endpointText(m_settings.host, m_settings.port),
                           hasTimedOut ? QStringLiteral("no answer") : m_socket.errorString());
        m_socket.abort();
        notify(ChannelEvent::OpenFailed);
        return false;
    }
    m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    notify(ChannelEvent::Opened);
    return true;
}

// The socket's own waitForConnected() gives up for good when its time is over, so it cannot be asked in
// slices; and it looks names up without any limit.
bool TcpChannel::waitUntilConnected()
{
    QElapsedTimer clock;
    clock.start();
    QEventLoop loop;
    QTimer slices;
    QObject::connect(&slices, &QTimer::timeout, &loop, [&] {
        if (isCancelled() || clock.hasExpired(m_settings.connectTimeout))
            loop.quit();
    });
    QObject::connect(
        &m_socket, &QAbstractSocket::stateChanged, &loop, [&](QAbstractSocket::SocketState state) {
            if (state == QAbstractSocket::ConnectedState || state == QAbstractSocket::UnconnectedState)
                loop.quit();
        });
    if (m_socket.state() == QAbstractSocket::HostLookupState ||
        m_socket.state() == QAbstractSocket::ConnectingState) {
        slices.start(std::min(Slice, m_settings.connectTimeout));
        loop.exec();
    }
    return m_socket.state() == QAbstractSocket::ConnectedState;
}

// Bytes that nobody fetched must not come back after the connection is opened again.
void TcpChannel::close()
{
    m_socket.abort();
    notify(ChannelEvent::Closed);
}

DeviceSetting *TcpChannel::deviceSetting() const
{
    return &m_device;
}

bool TcpChannel::isConnected() const
{
    return m_socket.state() == QAbstractSocket::ConnectedState && !hasPeerClosed(m_socket.socketDescriptor());
}

int TcpChannel::retryCount() const
{
    return isCancelled() ? 0 : m_settings.retries;
}

int TcpChannel::stationId() const
{
    return m_settings.station;
}

unsigned int TcpChannel::delayTime() const
{
    return isCancelled() ? 0 : m_settings.delay;
}

QString TcpChannel::errorString() const
{
    return m_error;
}

void TcpChannel::setStation(int station)
{
    m_settings.station = station;
}

void TcpChannel::setPort(quint16 port)
{
    m_settings.port = port;
    m_device = deviceFor(m_settings);
}

void TcpChannel::setObserver(Observer observer)
{
    m_observer = std::move(observer);
}

void TcpChannel::setCancelled(std::function<bool()> cancelled)
{
    m_cancelled = std::move(cancelled);
}

bool TcpChannel::isCancelled() const
{
    return m_cancelled && m_cancelled();
}

void TcpChannel::notify(ChannelEvent event, const QByteArray &bytes) const
{
    if (m_observer)
        m_observer(event, bytes);
}
