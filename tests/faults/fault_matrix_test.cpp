#include "kit/link/driver_link.h"
#include "tests/doubles/frames.h"
#include "tests/doubles/modbus_commands.h"
#include "tests/doubles/modbus_subject.h"
#include "tests/support/gtest_qt.h"

#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

// Every reader and writer with every fault in every reply and in every call of the channel: the exact text,
// closed or not, how many attempts, and never a byte of a refused reply in a result. What any driver owes its
// host under such faults, the kit checks; this is what this driver says and does.

namespace
{

using kit::Outcome;
using kit::ScriptedChannel;

struct Fault {
    kit::Trouble trouble;
    // Empty when the reply is as good as any.
    std::string text;
    bool isClosing;
};

typedef std::vector<Fault> Faults;

QByteArray withByte(QByteArray bytes, int i, int value)
{
    bytes[i] = static_cast<char>(value);
    return bytes;
}

void add(Faults &faults, int at, const char *name, const QByteArray &reply, const std::string &text)
{
    const Fault fault = {kit::otherReply(at, QLatin1String(name), reply), text, false};
    faults.push_back(fault);
}

std::string slaveIdText(int station)
{
    return "invalid slave id:" + std::to_string(station);
}

// What a reply gives that ends after so many bytes, or comes in two pieces of which the first has so many.
std::string textOfLength(int size)
{
    return size == 0 ? "PLC no response" : size < 5 ? "received bytes < 5" : "packet loss";
}

// The first read takes five bytes, so a gap right after them does not matter.
void addCuts(Faults &faults, int at, const QByteArray &reply)
{
    for (int size = 0; size < reply.size(); ++size) {
        const Fault cut = {kit::cutReply(at, size), textOfLength(size), true};
        faults.push_back(cut);
        const Fault late = {kit::lateReply(at, size), size == 5 ? "" : textOfLength(size), size != 5};
        if (size > 0)
            faults.push_back(late);
    }
}

std::string textOfFlip(const QByteArray &reply, int bit)
{
    if (bit < 8)
        return slaveIdText(byteAt(reply, 0) ^ 1 << bit);
    return bit < 15 ? "invalid response" : "CRC error";
}

void addFlips(Faults &faults, int at, const QByteArray &reply)
{
    for (int bit = 0; bit < reply.size() * 8; ++bit) {
        const Fault flip = {kit::flippedBit(at, bit), textOfFlip(reply, bit), false};
        faults.push_back(flip);
    }
}

void addExceptions(Faults &faults, int at, const QByteArray &reply)
{
    static const char *const digits[] = {"00", "01", "02", "03", "04", "05",
                                         "06", "07", "08", "09", "0A", "0B"};
    for (int code = 1; code <= 11; ++code) {
        const QByteArray exception = exceptionReply(1, byteAt(reply, 1), code);
        add(faults, at, "exception", exception, std::string("exception code:0x") + digits[code]);
        for (int i = 3; i < 5; ++i)
            add(faults, at, "exception with wrong CRC", withByte(exception, i, byteAt(exception, i) ^ 0x10),
                "CRC error");
        add(faults, at, "exception of another function", exceptionReply(1, byteAt(reply, 1) + 1, code),
            "invalid response");
        add(faults, at, "exception of another station", exceptionReply(2, byteAt(reply, 1), code),
            slaveIdText(2));
    }
}

// Replies that are whole, with a CRC that is right.
void addForeign(Faults &faults, int at, const QByteArray &reply)
{
    const QByteArray body = reply.left(reply.size() - 2);
    for (const int station : {0, 2, 129, 255})
        add(faults, at, "station", framed(withByte(body, 0, station)), slaveIdText(station));
    for (int function = 0; function < 256; ++function)
        if ((function & 0x7F) != byteAt(reply, 1))
            add(faults, at, "function", framed(withByte(body, 1, function)), "invalid response");
    // Byte counts of reads and the fields of an echo are not compared.
    const int lastEchoByte = byteAt(reply, 1) < 5 ? 2 : 5;
    for (int i = 2; i <= lastEchoByte; ++i)
        add(faults, at, "field", framed(withByte(body, i, byteAt(body, i) ^ 0xFF)), "");
}

Faults faultsOf(int at, const QByteArray &reply)
{
    Faults faults;
    addCuts(faults, at, reply);
    addFlips(faults, at, reply);
    addExceptions(faults, at, reply);
    addForeign(faults, at, reply);
    return faults;
}

int countOf(ScriptedChannel::Operation operation, const Outcome &outcome)
{
    return kit::countOf(operation, outcome.calls);
}

class FaultMatrix : public testing::Test
{
protected:
    FaultMatrix() : link(driver, subject)
    {
        link.channel().setTime(nullptr, nullptr);
        EXPECT_EQ(subject.prepare(), QString());
        link.run(kit::readOf(EightByteItem, QString(), 0));
        subject.cleanUp();
    }

    // Each command in turn, once it went well.
    void forEachCommand(const std::function<void()> &look)
    {
        const kit::Samples samples = subject.samples();
        for (size_t i = 0; i < samples.size(); ++i) {
            sample = samples[i];
            details = modbusCommands()[i].details;
            SCOPED_TRACE(modbusCommands()[i].name);
            good = run([this]() { return link.runOnOpenChannel(sample); });
            exchanges = kit::exchangesOf(good.calls);
            EXPECT_FALSE(good.hasError) << good.text.toStdString();
            look();
            ASSERT_FALSE(HasFailure());
        }
    }

    // And each exchange of it.
    void forEachExchange(const std::function<void(int at)> &look)
    {
        forEachCommand([this, &look]() {
            for (size_t at = 0; at < exchanges.size(); ++at) {
                SCOPED_TRACE("exchange " + std::to_string(at));
                look(static_cast<int>(at));
            }
        });
    }

    // On a slave as it is at first.
    Outcome run(const std::function<Outcome()> &command)
    {
        subject.slave = filledSlave();
        return command();
    }

    Outcome runWith(const kit::Trouble &trouble, int retries, int attempts = kit::DriverLink::Always)
    {
        return run([&]() { return link.runWith(trouble, sample, retries, attempts); });
    }

    // Empty text: it must have succeeded.
    void expectOutcome(const Outcome &outcome, const std::string &text)
    {
        EXPECT_EQ(outcome.hasError, !text.empty());
        if (sample.isWrite) {
            EXPECT_EQ(outcome.isWritten, text.empty());
        } else {
            EXPECT_EQ(outcome.data, text.empty() ? good.data : QByteArray());
        }
        if (!text.empty()) {
            EXPECT_EQ(outcome.text.toStdString(), text + details);
        }
    }

    // So many attempts that end with exchange number \a last, each a pause, a question and perhaps an open.
    void expectAttempts(const Outcome &outcome, int attempts, int last, bool isClosing)
    {
        std::vector<QByteArray> expected;
        for (int i = 0; i < attempts; ++i)
            for (int k = 0; k <= last; ++k)
                expected.push_back(exchanges[static_cast<size_t>(k)].request);
        std::vector<QByteArray> requests;
        for (const kit::Exchange &exchange : kit::exchangesOf(outcome.calls))
            requests.push_back(exchange.request);
        EXPECT_EQ(requests, expected);
        EXPECT_EQ(countOf(ScriptedChannel::IsConnected, outcome), attempts);
        EXPECT_EQ(countOf(ScriptedChannel::Close, outcome), isClosing ? attempts : 0);
        EXPECT_EQ(countOf(ScriptedChannel::Open, outcome), isClosing ? attempts - 1 : 0);
        EXPECT_EQ(link.channel().connected, !isClosing);
    }

    // The same fault in every attempt.
    void expectLasting(const Fault &fault, int retries)
    {
        const Outcome outcome = runWith(fault.trouble, retries);
        expectOutcome(outcome, fault.text);
        expectAttempts(outcome, retries + 1, fault.trouble.exchange, fault.isClosing);
    }

    // A fault in the first attempts; the last one goes well.
    void expectPassing(const Fault &fault, int retries)
    {
        const Outcome outcome = runWith(fault.trouble, retries, retries);
        expectOutcome(outcome, "");
        EXPECT_EQ(countOf(ScriptedChannel::Close, outcome), fault.isClosing ? retries : 0);
        EXPECT_EQ(static_cast<size_t>(kit::requestsOf(outcome)),
                  static_cast<size_t>(retries * (fault.trouble.exchange + 1)) + exchanges.size());
    }

    // A fault that does not matter: all goes on after it.
    void expectHarmless(const Fault &fault)
    {
        const Outcome outcome = runWith(fault.trouble, 0);
        expectOutcome(outcome, "");
        EXPECT_EQ(countOf(ScriptedChannel::Close, outcome), 0);
    }

    // A call that fails once and is tried again.
    void expectOnce(const kit::Trouble &trouble, const std::string &text)
    {
        SCOPED_TRACE(trouble.name.toStdString());
        for (int retries = 0; retries <= 3; ++retries) {
            const Outcome outcome = runWith(trouble, retries, 1);
            expectOutcome(outcome, retries == 0 ? text : "");
            EXPECT_EQ(countOf(ScriptedChannel::Close, outcome), 1);
            EXPECT_EQ(countOf(ScriptedChannel::Open, outcome), retries == 0 ? 0 : 1);
            EXPECT_EQ(countOf(ScriptedChannel::IsConnected, outcome), retries == 0 ? 1 : 2);
        }
    }

    ModbusSubject subject;
    DriverModbusRtuSlaveOverTcp driver;
    kit::DriverLink link;

    // The command at work, how it goes when all is well, and what a failure's text ends with.
    kit::Sample sample;
    Outcome good;
    kit::Exchanges exchanges;
    std::string details;
};

} // namespace

TEST_F(FaultMatrix, EveryFaultOfEveryReply)
{
    forEachExchange([this](int at) {
        for (const Fault &fault : faultsOf(at, exchanges[static_cast<size_t>(at)].reply)) {
            SCOPED_TRACE(fault.trouble.name.toStdString());
            if (fault.text.empty()) {
                expectHarmless(fault);
                continue;
            }
            for (int retries = 0; retries <= 3; ++retries) {
                expectLasting(fault, retries);
                expectPassing(fault, retries);
            }
            ASSERT_FALSE(HasFailure());
        }
    });
}

TEST_F(FaultMatrix, EverySendFallsShort)
{
    forEachExchange([this](int at) {
        for (int sent = -1; sent < exchanges[static_cast<size_t>(at)].request.size(); ++sent) {
            expectOnce(kit::shortSend(at, sent), "channel error");
            EXPECT_EQ(countOf(ScriptedChannel::ErrorString, runWith(kit::shortSend(at, sent), 0)), 1);
        }
    });
}

TEST_F(FaultMatrix, EveryReadFails)
{
    forEachExchange([this](int at) {
        for (const int result : {-1, 0, 1, 4, 6, 257})
            expectOnce(kit::failedRead(at, 0, result), result > 0 ? "received bytes < 5" : "PLC no response");
        for (int result = -1; result < exchanges[static_cast<size_t>(at)].reply.size() - 5; ++result)
            expectOnce(kit::failedRead(at, 1, result), "packet loss");
    });
}

TEST_F(FaultMatrix, OpenFailsOnAnyAttempt)
{
    forEachCommand([this]() {
        for (int nth = 1; nth <= 4; ++nth) {
            SCOPED_TRACE("open " + std::to_string(nth));
            // No reply at all, so every attempt closes; details are not for a channel that does not open.
            link.setTrouble(kit::silence(0));
            ScriptedChannel &channel = link.channel();
            channel.connected = false;
            channel.retries = 3;
            channel.errorText = QLatin1String("no route");
            channel.errorTextAfterClose = QLatin1String("closed");
            channel.fail(ScriptedChannel::Open, nth);
            const Outcome outcome = link.run(sample);
            EXPECT_FALSE(outcome.isWritten);
            EXPECT_EQ(outcome.data, QByteArray());
            EXPECT_EQ(outcome.text.toStdString(), nth == 1 ? "no route" : "closed");
            EXPECT_EQ(countOf(ScriptedChannel::Open, outcome), nth);
            EXPECT_EQ(countOf(ScriptedChannel::Close, outcome), nth - 1);
            EXPECT_EQ(kit::requestsOf(outcome), nth - 1);
        }
    });
}

// A channel that says it is closed is opened, and all goes on as on an open one.
TEST_F(FaultMatrix, ChannelThatSaysItIsClosed)
{
    forEachCommand([this]() {
        link.channel().fail(ScriptedChannel::IsConnected, 1, 0);
        for (const int opened : {1, 0}) {
            const Outcome outcome = run([this]() { return link.runOnOpenChannel(sample); });
            expectOutcome(outcome, "");
            EXPECT_EQ(countOf(ScriptedChannel::Open, outcome), opened);
        }
    });
}
