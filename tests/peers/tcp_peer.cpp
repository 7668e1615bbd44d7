#include "tests/peers/tcp_peer.h"

#include "tests/peers/text_printing.h"
#include "tests/peers/waiting.h"

#include <arpa/inet.h>
#include <linux/sockios.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

const int Patience = 10000;

void closeDescriptor(int &descriptor)
{
    if (descriptor >= 0)
        ::close(descriptor);
    descriptor = -1;
}

} // namespace

TcpPeer::TcpPeer(int backlog) : m_listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in address = {};
    socklen_t size = sizeof address;
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(m_listener, reinterpret_cast<sockaddr *>(&address), size) == 0 &&
        listen(m_listener, backlog) == 0 &&
        getsockname(m_listener, reinterpret_cast<sockaddr *>(&address), &size) == 0)
        m_port = ntohs(address.sin_port);
}

TcpPeer::~TcpPeer()
{
    close();
    stopListening();
}

bool TcpPeer::accept()
{
    close();
    pollfd waiting = {m_listener, POLLIN, 0};
    if (poll(&waiting, 1, Patience) == 1)
        m_connection = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
    return m_connection >= 0;
}

bool TcpPeer::send(const QByteArray &bytes)
{
    return flood(bytes) && waitUntil([this] {
               int unacknowledged = 0;
               return ioctl(m_connection, SIOCOUTQ, &unacknowledged) == 0 && unacknowledged == 0;
           });
}

bool TcpPeer::flood(const QByteArray &bytes)
{
    return ::send(m_connection, bytes.constData(), static_cast<size_t>(bytes.size()), MSG_NOSIGNAL) ==
           bytes.size();
}

bool TcpPeer::isReadable() const
{
    pollfd waiting = {m_connection, POLLIN, 0};
    return poll(&waiting, 1, Patience) == 1;
}

QByteArray TcpPeer::receive(int count)
{
    QByteArray bytes;
    while (bytes.size() < count && isReadable()) {
        QByteArray some(count - bytes.size(), '\0');
        const ssize_t received = recv(m_connection, some.data(), static_cast<size_t>(some.size()), 0);
        if (received <= 0)
            break;
        bytes += some.left(static_cast<int>(received));
    }
    return bytes;
}

bool TcpPeer::seesEnd()
{
    char byte = 0;
    return isReadable() && recv(m_connection, &byte, 1, 0) <= 0;
}

void TcpPeer::close()
{
    closeDescriptor(m_connection);
}

void TcpPeer::stopListening()
{
    closeDescriptor(m_listener);
}
