#include "desk/slave/slave_thread.h"
#include "tests/peers/driver_link.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QThread>

#include <functional>
#include <ostream>

namespace
{

const int Timeout = 150;

// No two registers hold the same, so a value that belongs to another address shows.
quint16 registerAt(int offset)
{
    return static_cast<quint16>(offset * 37 + 11);
}

bool bitAt(int offset)
{
    return offset % 3 == 0;
}

SlaveMemory knownMemory()
{
    SlaveMemory memory;
    for (int i = 0; i < 200; ++i) {
        const quint16 offset = static_cast<quint16>(i);
        memory.setValue(0, Area::HoldingRegisters, offset, registerAt(i));
        memory.setValue(0, Area::InputRegisters, offset, static_cast<quint16>(registerAt(i) + 1));
        memory.setValue(0, Area::Coils, offset, bitAt(i));
        memory.setValue(0, Area::DiscreteInputs, offset, !bitAt(i));
    }
    return memory;
}

QByteArray packedBits(int offset, int count, bool inverted)
{
    QByteArray bytes((count + 7) / 8, '\0');
    for (int i = 0; i < count; ++i) {
        if (bitAt(offset + i) != inverted)
            bytes[i / 8] = static_cast<char>(bytes.at(i / 8) | 1 << i % 8);
    }
    return bytes;
}

// A transaction that says whether it came out right. A failure must bring no data.
struct Operation {
    const char *name;
    std::function<bool(DriverLink &)> run;
};

bool readsRegisters(DriverLink &link, const char *area, int offset, int count, int added)
{
    const std::vector<int> words = link.readWords(QStringLiteral("%1%2").arg(area).arg(offset + 1), count);
    if (!link.error().isEmpty()) {
        EXPECT_TRUE(words.empty());
        return false;
    }
    std::vector<int> expected;
    for (int i = 0; i < count; ++i)
        expected.push_back(registerAt(offset + i) + added);
    EXPECT_EQ(expected, words) << area << offset + 1;
    return expected == words;
}

bool readsBits(DriverLink &link, const char *area, int offset, int count, bool inverted)
{
    const QByteArray bits = link.read(Bits, count, QStringLiteral("%1%2").arg(area).arg(offset + 1));
    if (!link.error().isEmpty()) {
        EXPECT_TRUE(bits.isEmpty());
        return false;
    }
    EXPECT_EQ(packedBits(offset, count, inverted), bits) << area << offset + 1;
    return packedBits(offset, count, inverted) == bits;
}

bool writesRegisters(DriverLink &link, const char *area, int offset, int count)
{
    std::vector<int> values;
    for (int i = 0; i < count; ++i)
        values.push_back(registerAt(offset + i));
    return link.writeWords(QStringLiteral("%1%2").arg(area).arg(offset + 1), values);
}

bool writesBits(DriverLink &link, const char *area, int offset, int count)
{
    return link.write(Bits, count, QStringLiteral("%1%2").arg(area).arg(offset + 1),
                      packedBits(offset, count, false));
}

const std::vector<Operation> &operations()
{
    static const std::vector<Operation> all{
        {"function 1", [](DriverLink &link) { return readsBits(link, "DO", 7, 30, false); }},
        {"function 2", [](DriverLink &link) { return readsBits(link, "DI", 9, 12, true); }},
        {"function 3", [](DriverLink &link) { return readsRegisters(link, "HR", 40, 3, 0); }},
        {"function 4", [](DriverLink &link) { return readsRegisters(link, "IR", 60, 10, 1); }},
        {"function 5", [](DriverLink &link) { return writesBits(link, "FN5DO", 21, 1); }},
        {"function 6", [](DriverLink &link) { return writesRegisters(link, "FN6HR", 90, 1); }},
        {"function 15", [](DriverLink &link) { return writesBits(link, "DO", 33, 20); }},
        {"function 16", [](DriverLink &link) { return writesRegisters(link, "HR", 100, 5); }},
    };
    return all;
}

class RealSocketFault : public testing::Test
{
protected:
    RealSocketFault() { EXPECT_TRUE(layProjectBesideProgram()); }

    void startSlave(SlaveOptions options = SlaveOptions())
    {
        options.memory = knownMemory();
        slave = std::make_unique<SlaveThread>(options);
        ASSERT_TRUE(slave->start()) << slave->errorString().toStdString();
        link = std::make_unique<DriverLink>(channelTo(slave->port(), Timeout));
    }

    void expectEverythingRight(const char *after)
    {
        for (const Operation &operation : operations())
            EXPECT_TRUE(operation.run(*link))
                << operation.name << " after " << after << ": " << link->error().toStdString();
    }

    // The fault spoils each operation with this text ("": it does not), and what comes next is right.
    void expectFault(const Fault &fault, const QString &text)
    {
        const QByteArray name = faultName(fault.kind).toLatin1() + ' ' + QByteArray::number(fault.value);
        for (size_t i = 0; i < operations().size(); ++i) {
            const Operation &operation = operations().at(i);
            const Operation &next = operations().at((i + 3) % operations().size());
            slave->inject(fault);
            EXPECT_EQ(text.isEmpty(), operation.run(*link)) << operation.name << " with " << name.constData();
            EXPECT_EQ(text, link->error()) << operation.name << " with " << name.constData();
            EXPECT_TRUE(next.run(*link))
                << next.name << " after " << name.constData() << ": " << link->error().toStdString();
        }
    }

    std::unique_ptr<SlaveThread> slave;
    std::unique_ptr<DriverLink> link;
};

TEST_F(RealSocketFault, NothingWrong)
{
    startSlave();
    expectEverythingRight("nothing");
    EXPECT_EQ(1u, slave->counts().connections);
}

TEST_F(RealSocketFault, LostReplies)
{
    startSlave();
    expectFault({Fault::Silence, -1}, "PLC no response");
    expectFault({Fault::HalfOpen, -1}, "PLC no response");
    expectFault({Fault::Merge, -1}, "PLC no response");
}

TEST_F(RealSocketFault, LateReplies)
{
    startSlave();
    expectFault({Fault::Delay, Timeout + 30}, "PLC no response");
    expectEverythingRight("late replies");
}

// The late reply has the shape of the next one, but its connection is gone by then.
TEST_F(RealSocketFault, LateReplyOfTheSameShape)
{
    startSlave();
    slave->inject({Fault::Delay, Timeout + 50});
    EXPECT_FALSE(readsRegisters(*link, "HR", 10, 2, 0));
    EXPECT_EQ("PLC no response", link->error());
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(readsRegisters(*link, "HR", 20 + i, 2, 0));
        QThread::msleep(5);
    }
}

TEST_F(RealSocketFault, EndedConnections)
{
    startSlave();
    expectFault({Fault::Reset, -1}, "PLC no response");
    expectFault({Fault::Close, -1}, "PLC no response");
}

TEST_F(RealSocketFault, RefusedReplies)
{
    startSlave();
    expectFault({Fault::WrongStation, 9}, "invalid slave id:9");
    expectFault({Fault::WrongFunction, -1}, "invalid response");
    expectFault({Fault::WrongCrc, -1}, "CRC error");
    expectFault({Fault::Exception, 6}, "exception code:0x06");
    expectFault({Fault::Exception, 255}, "exception code:0xFF");
    EXPECT_EQ(1u, slave->counts().connections);
}

TEST_F(RealSocketFault, LeftoverBytes)
{
    startSlave();
    expectFault({Fault::JunkAfter, 20}, QString());
    expectFault({Fault::Double, -1}, QString());
    EXPECT_EQ(1u, slave->counts().connections);
}

TEST_F(RealSocketFault, SplitReplies)
{
    startSlave();
    expectFault({Fault::Split, 0}, QString());
    expectFault({Fault::Split, 1}, QString());
}

TEST_F(RealSocketFault, TruncationAtEveryByte)
{
    startSlave();
    const Operation &read = operations().at(2);
    const int wholeReply = 5 + 3 * 2;
    for (int size = 0; size < wholeReply; ++size) {
        const char *text = size == 0 ? "PLC no response" : size < 5 ? "received bytes < 5" : "packet loss";
        slave->inject({Fault::Truncate, size});
        EXPECT_FALSE(read.run(*link));
        EXPECT_EQ(text, link->error()) << size;
        expectEverythingRight("a truncated reply");
    }
}

// Noise in front of a reply is skipped, whatever it is made of.
TEST_F(RealSocketFault, NoiseBeforeTheReply)
{
    startSlave();
    for (int round = 0; round < 40; ++round) {
        for (const Operation &operation : operations()) {
            slave->inject({Fault::JunkBefore, -1});
            EXPECT_TRUE(operation.run(*link)) << operation.name << ": " << link->error().toStdString();
        }
        expectEverythingRight("noise");
    }
}

TEST_F(RealSocketFault, EchoedRequests)
{
    startSlave();
    slave->inject({Fault::Echo, -1}, 2 * static_cast<int>(operations().size()));
    expectEverythingRight("an echo");
    expectEverythingRight("an echo");
    // A read tells that the line echoes no more; a single write cannot.
    EXPECT_TRUE(operations().front().run(*link));
    expectEverythingRight("the last echo");
    EXPECT_EQ(1u, slave->counts().connections);
}

// A read of 17 to 24 bits has a reply of the length of its request, and the driver does not compare byte
// counts.
TEST_F(RealSocketFault, EchoThatLooksLikeTheReply)
{
    startSlave();
    slave->inject({Fault::Echo, -1});
    EXPECT_TRUE(readsBits(*link, "DO", 110, 24, false));
    expectEverythingRight("an echo");
}

TEST_F(RealSocketFault, RepliesToFormerRequestsThatDiffer)
{
    startSlave();
    for (size_t i = 0; i < operations().size(); ++i) {
        const Operation &operation = operations().at((i + 1) % operations().size());
        EXPECT_TRUE(operations().at(i).run(*link));
        slave->inject({Fault::Stale, -1});
        EXPECT_TRUE(operation.run(*link)) << operation.name << " after " << operations().at(i).name;
        expectEverythingRight("a former reply");
    }
    EXPECT_TRUE(readsRegisters(*link, "HR", 10, 2, 0));
    slave->inject({Fault::Stale, -1});
    EXPECT_FALSE(readsRegisters(*link, "HR", 20, 4, 0));
    slave->inject({Fault::Stale, -1});
    EXPECT_FALSE(readsRegisters(*link, "HR", 10, 2, 0));
    expectEverythingRight("a former reply");
}

TEST_F(RealSocketFault, BannerOnEveryConnection)
{
    SlaveOptions options;
    options.gateway.banner = "welcome to the gateway\r\n";
    startSlave(options);
    for (int round = 0; round < 20; ++round) {
        expectEverythingRight("a banner");
        link->channel().close();
    }
}

TEST_F(RealSocketFault, RetriesOvercomeEveryFault)
{
    startSlave();
    ChannelSettings settings = channelTo(slave->port(), Timeout);
    settings.retries = 1;
    DriverLink patient(settings);
    for (const QString &name : allFaultNames()) {
        // This channel does not settle its line.
        const bool mayLookRight = name == faultName(Fault::Stale) || name == faultName(Fault::Exception) ||
                                  name == faultName(Fault::Late);
        if (mayLookRight)
            continue;
        FaultPlan plan;
        ASSERT_TRUE(plan.add(name + "=1/1"));
        slave->inject(plan.next());
        EXPECT_TRUE(operations().at(2).run(patient)) << name.toStdString();
        EXPECT_TRUE(operations().at(7).run(patient)) << name.toStdString();
    }
}

TEST_F(RealSocketFault, SlaveRestarts)
{
    startSlave();
    for (int round = 0; round < 5; ++round) {
        expectEverythingRight("a restart");
        slave->stop();
        ASSERT_TRUE(slave->start()) << slave->errorString().toStdString();
    }
    expectEverythingRight("a restart");
}

TEST_F(RealSocketFault, RefusedConnections)
{
    startSlave();
    expectEverythingRight("nothing");
    slave->stop();
    for (const Operation &operation : operations()) {
        EXPECT_FALSE(operation.run(*link)) << operation.name;
        EXPECT_EQ(QStringLiteral("cannot connect to 127.0.0.1:%1: Connection refused").arg(slave->port()),
                  link->error());
    }
    ASSERT_TRUE(slave->start()) << slave->errorString().toStdString();
    expectEverythingRight("refused connections");
}

} // namespace
