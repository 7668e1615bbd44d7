#include "tests/peers/scripted_peer.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <utility>

ScriptedPeer::ScriptedPeer(Script script)
{
    listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    ::bind(listener, reinterpret_cast<const sockaddr *>(&address), size);
    ::listen(listener, 1);
    ::getsockname(listener, reinterpret_cast<sockaddr *>(&address), &size);
    listenPort = ntohs(address.sin_port);

    thread = std::thread([this, script = std::move(script)] {
        connection = ::accept(listener, nullptr, nullptr);
        if (connection < 0)
            return;
        const int on = 1;
        setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        script(*this);
        ::shutdown(connection, SHUT_RDWR);
    });
}

ScriptedPeer::~ScriptedPeer()
{
    // Ends an accept() that nobody came to.
    ::shutdown(listener, SHUT_RDWR);
    thread.join();
    ::close(listener);
    if (connection >= 0)
        ::close(connection);
}

QByteArray ScriptedPeer::receive(int size)
{
    QByteArray bytes(size, '\0');
    const ssize_t received = ::recv(connection, bytes.data(), static_cast<size_t>(size), MSG_WAITALL);
    return bytes.left(received < 0 ? 0 : static_cast<int>(received));
}

void ScriptedPeer::reset()
{
    const linger atOnce = {1, 0};
    setsockopt(connection, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    ::close(connection);
    connection = -1;
}

void ScriptedPeer::send(const QByteArray &bytes)
{
    [[maybe_unused]] const ssize_t sent =
        ::send(connection, bytes.constData(), static_cast<size_t>(bytes.size()), MSG_NOSIGNAL);
}
