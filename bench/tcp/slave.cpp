#include "bench/tcp/slave.h"

#include "bench/support/filled_slave.h"

#include <cstring>
#include <iostream>
#include <system_error>
#include <unordered_map>

namespace
{

const int MaxFrame = 260;

/// The answers to all requests so far, known by their PDU's first five bytes.
class Answers
{
public:
    template <typename Make>
    QByteArray &to(const char *pdu, Make make)
    {
        quint64 key = 0;
        std::memcpy(&key, pdu, 5);
        QByteArray &answer = made[key];
        if (answer.isEmpty())
            answer = make();
        return answer;
    }

private:
    std::unordered_map<quint64, QByteArray> made;
};

int byteAt(const char *frame, int i)
{
    return static_cast<unsigned char>(frame[i]);
}

// The bytes of the request that starts like this; one byte more than there are while that is not known.
int rtuSize(const char *frame, int received)
{
    if (received < 8)
        return received + 1;
    return frame[1] == 15 || frame[1] == 16 ? 9 + byteAt(frame, 6) : 8;
}

int mbapSize(const char *frame, int received)
{
    return received < 6 ? received + 1 : 6 + (byteAt(frame, 4) << 8 | byteAt(frame, 5));
}

// The bytes of one request; 0 when the client has closed the connection.
int receiveRequest(Socket &socket, char *frame, int (*size)(const char *, int))
{
    int received = 0;
    while (received < size(frame, received)) {
        const int more = socket.receive(frame + received, MaxFrame - received);
        if (more == 0)
            return 0;
        received += more;
    }
    return received;
}

void serveRtu(Socket &socket)
{
    ModelSlave slave = filledSlave();
    Answers answers;
    char frame[MaxFrame];
    while (const int size = receiveRequest(socket, frame, rtuSize)) {
        const QByteArray &answer =
            answers.to(frame + 1, [&] { return slave.answer(QByteArray(frame, size)); });
        socket.send(answer.constData(), answer.size());
    }
}

// The header is transaction (2 bytes), protocol (2), length of what follows (2), station.
QByteArray mbapFrame(const char *header, const QByteArray &pdu)
{
    QByteArray frame(header, 7);
    frame[4] = static_cast<char>((pdu.size() + 1) >> 8);
    frame[5] = static_cast<char>((pdu.size() + 1) & 0xFF);
    return frame + pdu;
}

void serveMbap(Socket &socket)
{
    ModelSlave slave = filledSlave();
    Answers answers;
    char frame[MaxFrame];
    while (const int size = receiveRequest(socket, frame, mbapSize)) {
        QByteArray &answer = answers.to(
            frame + 7, [&] { return mbapFrame(frame, slave.replyPdu(QByteArray(frame + 7, size - 7))); });
        std::memcpy(answer.data(), frame, 2);
        socket.send(answer.constData(), answer.size());
    }
}

void serve(Listener &listener, Framing framing)
{
    try {
        Socket socket = listener.accept();
        framing == Framing::Rtu ? serveRtu(socket) : serveMbap(socket);
    } catch (const std::system_error &error) {
        std::cerr << "slave: " << error.what() << '\n';
    }
}

} // namespace

Slave::Slave(Framing framing) : thread([this, framing] { serve(listener, framing); }) {}

Slave::~Slave()
{
    listener.stop();
    thread.join();
}
