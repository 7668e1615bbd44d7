#include "tcp/slave.h"

#include "support/slave_model.h"

#include <cstring>
#include <iostream>
#include <system_error>
#include <unordered_map>

namespace
{

const int LongestFrame = 260;

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

// The bytes of the request that begins like this; one byte more than there are when that cannot be told yet.
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

// One request; false when the client has closed the connection.
bool receiveRequest(Socket &socket, char *frame, int (*size)(const char *, int))
{
    for (int received = 0; received < size(frame, received);) {
        const int more = socket.receive(frame + received, LongestFrame - received);
        if (more == 0)
            return false;
        received += more;
    }
    return true;
}

void serveRtu(Socket &socket)
{
    Answers answers;
    char frame[LongestFrame];
    while (receiveRequest(socket, frame, rtuSize)) {
        const QByteArray &answer =
            answers.to(frame + 1, [&] { return rtuFrame(frame[0], replyPdu(QByteArray(frame + 1, 5))); });
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
    Answers answers;
    char frame[LongestFrame];
    while (receiveRequest(socket, frame, mbapSize)) {
        QByteArray &answer =
            answers.to(frame + 7, [&] { return mbapFrame(frame, replyPdu(QByteArray(frame + 7, 5))); });
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
