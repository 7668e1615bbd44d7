#include "tests/plants/plant_server.h"

#include <array>
#include <chrono>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

const int Slice = 2; // milliseconds

qint64 microsecondsNow()
{
    using namespace std::chrono;
    return duration_cast<microseconds>(steady_clock::now().time_since_epoch()).count();
}

} // namespace

PlantServer::PlantServer(const PlantOptions &options)
{
    m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    ::bind(m_listener, reinterpret_cast<const sockaddr *>(&address), size);
    ::listen(m_listener, 4);
    ::getsockname(m_listener, reinterpret_cast<sockaddr *>(&address), &size);
    m_port = ntohs(address.sin_port);
    // Nobody listens on a port whose owner only holds it.
    if (options.port == PlantOptions::Port::Refuses) {
        ::close(m_listener);
        m_listener = -1;
        return;
    }
    m_thread = std::thread([this, options] { serve(options); });
}

PlantServer::~PlantServer()
{
    m_isStopping = true;
    if (m_thread.joinable())
        m_thread.join();
    dropConnection();
    ::close(m_listener);
}

// The plant's clock follows the real one.
void PlantServer::serve(const PlantOptions &options)
{
    VirtualTime time;
    Plant plant(time, options);
    const qint64 beganAt = microsecondsNow();
    while (!m_isStopping) {
        std::array<pollfd, 2> waiting{{{m_listener, POLLIN, 0}, {m_connection, POLLIN, 0}}};
        ::poll(waiting.data(), waiting.size(), Slice);
        time.runUntil(microsecondsNow() - beganAt);
        if (waiting[1].revents != 0 && waiting[1].fd == m_connection)
            takeBytes(plant);
        if (waiting[0].revents != 0)
            takeConnection(plant);
    }
}

void PlantServer::takeConnection(Plant &plant)
{
    dropConnection();
    m_connection = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
    const int on = 1;
    setsockopt(m_connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    plant.accept(*this);
}

void PlantServer::takeBytes(Plant &plant)
{
    QByteArray bytes(1024, '\0');
    const ssize_t size = ::recv(m_connection, bytes.data(), static_cast<size_t>(bytes.size()), MSG_DONTWAIT);
    if (size > 0) {
        plant.receive(bytes.left(static_cast<int>(size)));
        return;
    }
    plant.closed();
    dropConnection();
}

void PlantServer::dropConnection()
{
    ::close(m_connection);
    m_connection = -1;
}

void PlantServer::deliver(const QByteArray &bytes)
{
    [[maybe_unused]] const ssize_t sent =
        ::send(m_connection, bytes.constData(), static_cast<size_t>(bytes.size()), MSG_NOSIGNAL);
}

void PlantServer::end(bool isReset)
{
    const linger atOnce = {1, 0};
    if (isReset)
        setsockopt(m_connection, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    dropConnection();
}
