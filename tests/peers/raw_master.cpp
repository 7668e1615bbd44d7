#include "tests/peers/raw_master.h"

#include "desk/wire/rtu_frame.h"

#include <QElapsedTimer>

#include <arpa/inet.h>
#include <cerrno>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

RawMaster::RawMaster(quint16 port)
{
    descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
        ::close(descriptor);
        descriptor = -1;
    }
}

RawMaster::~RawMaster()
{
    if (descriptor >= 0)
        ::close(descriptor);
}

void RawMaster::send(const QByteArray &bytes)
{
    int sent = 0;
    while (sent < bytes.size()) {
        const ssize_t more = ::send(descriptor, bytes.constData() + sent,
                                    static_cast<size_t>(bytes.size() - sent), MSG_NOSIGNAL);
        if (more <= 0)
            return;
        sent += static_cast<int>(more);
    }
}

bool RawMaster::waitForBytes(int timeoutMs) const
{
    pollfd waiting = {descriptor, POLLIN, 0};
    // What is left of a time that has just run out is below 0, which poll() takes for no limit.
    return ::poll(&waiting, 1, qMax(timeoutMs, 0)) > 0;
}

QByteArray RawMaster::receiveSegment(int timeoutMs)
{
    QByteArray bytes(4096, '\0');
    if (end != End::StillOpen || !waitForBytes(timeoutMs))
        return QByteArray();
    const ssize_t size = ::recv(descriptor, bytes.data(), static_cast<size_t>(bytes.size()), 0);
    if (size <= 0) {
        end = size < 0 && errno == ECONNRESET ? End::Reset : End::Closed;
        return QByteArray();
    }
    bytes.truncate(static_cast<int>(size));
    return bytes;
}

QByteArray RawMaster::receive(int size, int timeoutMs)
{
    QElapsedTimer clock;
    clock.start();
    QByteArray bytes;
    while (bytes.size() < size && end == End::StillOpen && !clock.hasExpired(timeoutMs))
        bytes += receiveSegment(static_cast<int>(timeoutMs - clock.elapsed()));
    return bytes;
}

bool RawMaster::isSilent(int timeoutMs)
{
    return !waitForBytes(timeoutMs);
}

RawMaster::End RawMaster::waitForEnd(int timeoutMs)
{
    QElapsedTimer clock;
    clock.start();
    while (end == End::StillOpen && !clock.hasExpired(timeoutMs))
        receiveSegment(static_cast<int>(timeoutMs - clock.elapsed()));
    return end;
}

QByteArray RawMaster::ask(const char *request)
{
    send(frameOf(request));
    QByteArray reply = receive(5);
    const int size = replySize(reply);
    if (size > reply.size())
        reply += receive(size - int(reply.size()));
    const QByteArray digits = reply.left(reply.size() - modbus::CrcSize).toHex().toUpper();
    return hasGoodCrc(reply) ? digits : "bad CRC: " + reply.toHex().toUpper();
}

QByteArray frameOf(const char *hexWithoutCrc)
{
    return withCrc(QByteArray::fromHex(hexWithoutCrc));
}
