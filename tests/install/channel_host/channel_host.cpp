// A host that makes its channel of a line of its own: this one answers from memory, behind some noise.

#include "desk/channel/line_channel.h"
#include "desk/wire/rtu_frame.h"

#include <cstdio>

namespace
{

class MemoryLine : public Line
{
public:
    MemoryLine() : m_now(0) {}

    bool open(qint64 /*deadline*/) override { return true; }
    void close() override { m_arrived.clear(); }
    LineState state() override { return LineState::Open; }
    int send(const char *bytes, int size, qint64 /*deadline*/) override
    {
        const QByteArray request(bytes, size);
        m_arrived = "noise" + modbus::withCrc(request.left(2) + QByteArray("\2\0\7", 3));
        return size;
    }
    QByteArray receive(qint64 deadline) override
    {
        const QByteArray arrived = m_arrived;
        m_arrived.clear();
        if (arrived.isEmpty())
            pause(deadline);
        return arrived;
    }
    void pause(qint64 until) override { m_now = qMax(m_now, until); }
    QString errorString() const override { return QString(); }
    qint64 now() const override { return m_now; }

private:
    QByteArray m_arrived;
    qint64 m_now;
};

} // namespace

int main()
{
    MemoryLine line;
    LineChannel channel(line, nullptr, ExchangeSettings());
    const QByteArray request = modbus::withCrc(QByteArray("\1\3\0\0\0\1", 6));
    char reply[7] = {};
    const bool isRead = channel.open() && channel.writeData(request.constData(), 8) == 8 &&
                        channel.readData(reply, 5) == 5 && channel.readData(reply + 5, 2) == 2;
    std::printf("%s, register %d\n", isRead ? "read" : "not read", reply[4]);
    return isRead && reply[4] == 7 ? 0 : 1;
}
