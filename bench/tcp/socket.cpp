#include "bench/tcp/socket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace
{

int checked(int result)
{
    if (result < 0)
        throw std::system_error(errno, std::generic_category());
    return result;
}

sockaddr_in loopback(int port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<uint16_t>(port));
    return address;
}

} // namespace

Socket::Socket(int connected) : descriptor(connected)
{
    const int on = 1;
    checked(setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on));
}

Socket::Socket(Socket &&other) noexcept : descriptor(std::exchange(other.descriptor, -1)) {}

Socket &Socket::operator=(Socket &&other) noexcept
{
    std::swap(descriptor, other.descriptor);
    return *this;
}

Socket::~Socket()
{
    if (descriptor >= 0)
        close(descriptor);
}

Socket Socket::connectedTo(int port)
{
    const int descriptor = checked(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const sockaddr_in address = loopback(port);
    checked(connect(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address));
    const timeval second = {1, 0};
    checked(setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &second, sizeof second));
    return Socket(descriptor);
}

void Socket::send(const char *bytes, int size)
{
    while (size > 0) {
        const auto sent = static_cast<int>(
            checked(static_cast<int>(::send(descriptor, bytes, static_cast<size_t>(size), MSG_NOSIGNAL))));
        bytes += sent;
        size -= sent;
    }
}

int Socket::receive(char *bytes, int size)
{
    return checked(static_cast<int>(recv(descriptor, bytes, static_cast<size_t>(size), 0)));
}

Listener::Listener() : descriptor(checked(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)))
{
    const sockaddr_in address = loopback(0);
    checked(bind(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address));
    checked(listen(descriptor, 1));
}

Listener::~Listener()
{
    close(descriptor);
}

int Listener::port() const
{
    sockaddr_in address = {};
    socklen_t size = sizeof address;
    checked(getsockname(descriptor, reinterpret_cast<sockaddr *>(&address), &size));
    return ntohs(address.sin_port);
}

Socket Listener::accept()
{
    return Socket(checked(::accept(descriptor, nullptr, nullptr)));
}

void Listener::stop()
{
    shutdown(descriptor, SHUT_RDWR);
}
