#pragma once

#include "desk/channel/line_channel.h"
#include "tests/doubles/frames.h"
#include "tests/simulation/simulated_line.h"
#include "tests/support/gtest_qt.h"

#include <QList>

#include <functional>

const qint64 Ms = 1000; // the line's clock counts microseconds

/// The other side of a line, as a test says. Everything that it is sent is kept.
class ScriptedSide : public LinePeer
{
public:
    typedef std::function<void(SimulatedLine &, const QByteArray &)> Script;

    bool accept(SimulatedLine &line) override
    {
        ++connections;
        current = &line;
        return isListening;
    }
    void closed(SimulatedLine & /*line*/) override { current = nullptr; }
    void receive(SimulatedLine &line, const QByteArray &bytes) override
    {
        requests.append(bytes);
        if (script)
            script(line, bytes);
    }

    Script script;
    bool isListening = true;
    int connections = 0;
    SimulatedLine *current = nullptr;
    QList<QByteArray> requests;
};

/// A channel of station 5 with a time-out of 100 ms, on a simulated line.
class ChannelTest : public testing::Test
{
protected:
    static ExchangeSettings settings()
    {
        ExchangeSettings settings;
        settings.station = 5;
        settings.timeout = 100;
        return settings;
    }
    explicit ChannelTest(const ExchangeSettings &given = settings())
        : line(time, side), channel(line, nullptr, given)
    {
        channel.setObserver(
            [this](ChannelEvent event, const QByteArray &bytes) { events.append(qMakePair(event, bytes)); });
    }

    /// Bytes that arrive \a after milliseconds from now, whichever connection is open then.
    void comes(const QByteArray &bytes, qint64 after = 0)
    {
        time.after(after * Ms, [this, bytes] {
            if (side.current != nullptr)
                side.current->deliver(bytes);
        });
    }
    /// One exchange by the driver's rules: five bytes and the rest, closing where it closes.
    QByteArray ask(const QByteArray &request, int rest)
    {
        if (!channel.isConnected() && !channel.open())
            return QByteArray();
        if (send(request) != request.size())
            return closing(QByteArray());
        const QByteArray first = read(5);
        if (first.size() != 5)
            return closing(first);
        if (first.left(2) != request.left(2))
            return first;
        const QByteArray last = read(rest);
        return last.size() == rest ? first + last : closing(first + last);
    }
    int send(const QByteArray &request)
    {
        return channel.writeData(request.constData(), static_cast<int>(request.size()));
    }
    QByteArray read(int count)
    {
        QByteArray buffer(count, '\0');
        const int received = channel.readData(buffer.data(), count);
        return buffer.left(received);
    }
    QByteArray bytesOf(ChannelEvent wanted) const
    {
        QByteArray all;
        for (int i = 0; i < events.size(); ++i)
            all += events.at(i).first == wanted ? events.at(i).second : QByteArray();
        return all;
    }
    int count(ChannelEvent wanted) const
    {
        int found = 0;
        for (int i = 0; i < events.size(); ++i)
            found += events.at(i).first == wanted ? 1 : 0;
        return found;
    }
    qint64 milliseconds() const { return time.now() / Ms; }

    VirtualTime time;
    ScriptedSide side;
    SimulatedLine line;
    LineChannel channel;
    QList<QPair<ChannelEvent, QByteArray>> events;

private:
    QByteArray closing(const QByteArray &bytes)
    {
        channel.close();
        return bytes;
    }
};

/// Station 5, two registers from 16 on.
const QByteArray ReadTwo = framed("05 03 00 10 00 02");
const QByteArray ReplyTwo = framed("05 03 04 11 22 33 44");
const int RestOfTwo = 4;
