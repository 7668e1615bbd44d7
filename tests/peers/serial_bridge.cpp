#include "tests/peers/serial_bridge.h"

#include <array>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <pty.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

namespace
{

sockaddr_in loopback(quint16 port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

bool copyBytes(int from, int to)
{
    std::array<char, 512> bytes;
    const ssize_t size = ::read(from, bytes.data(), bytes.size());
    return size > 0 && ::write(to, bytes.data(), static_cast<size_t>(size)) == size;
}

} // namespace

SerialBridge::SerialBridge()
{
    openLine();
    listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    ::bind(listener, reinterpret_cast<const sockaddr *>(&address), size);
    ::listen(listener, 1);
    ::getsockname(listener, reinterpret_cast<sockaddr *>(&address), &size);
    listenPort = ntohs(address.sin_port);
    thread = std::thread([this] {
        do {
            ::close(connection);
            connection = ::accept(listener, nullptr, nullptr);
        } while (connection >= 0 && pump());
    });
}

SerialBridge::SerialBridge(quint16 slavePort)
{
    openLine();
    connection = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = loopback(slavePort);
    if (::connect(connection, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0)
        thread = std::thread([this] { pump(); });
}

SerialBridge::~SerialBridge()
{
    // Ends an accept() that nobody came to.
    ::shutdown(listener, SHUT_RDWR);
    ::close(stopPipe[1]);
    if (thread.joinable())
        thread.join();
    for (const int descriptor : {line, farEnd, listener, connection, stopPipe[0]})
        ::close(descriptor);
}

// The far end is held open, so that the line survives programs that open and close it.
void SerialBridge::openLine()
{
    termios raw = {};
    cfmakeraw(&raw);
    if (::pipe2(stopPipe, O_CLOEXEC) == 0 && ::openpty(&line, &farEnd, nullptr, &raw, nullptr) == 0)
        name = QString::fromLocal8Bit(::ttyname(farEnd));
}

// False when it is to stop; true when the connection is over.
bool SerialBridge::pump()
{
    const int on = 1;
    setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    std::array<pollfd, 3> waiting{{{line, POLLIN, 0}, {connection, POLLIN, 0}, {stopPipe[0], POLLIN, 0}}};
    while (::poll(waiting.data(), waiting.size(), -1) > 0 && waiting[2].revents == 0) {
        if (waiting[0].revents != 0 && !copyBytes(line, connection))
            return true;
        if (waiting[1].revents != 0 && !copyBytes(connection, line))
            return true;
    }
    return false;
}
