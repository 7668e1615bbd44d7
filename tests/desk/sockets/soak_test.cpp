#include "desk/slave/slave_thread.h"
#include "drivers/qt/qt_lines.h"
#include "tests/peers/driver_link.h"
#include "tests/peers/process_use.h"
#include "tests/peers/text_printing.h"
#include "tests/peers/waiting.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

#include <dlfcn.h>
#include <map>
#include <random>

// Many transactions on a real socket with one reply in a hundred spoilt. Every value is right, every failure
// has its fault, and nothing piles up. SOAK_TRANSACTIONS says how many; a million take some minutes.

namespace
{

const int DefaultTransactions = 40000;
const int Timeout = 100;
const int FaultPercent = 1;
// Of memory, while everything has been seen to happen before.
const qint64 MostGrowth = 2 * 1024 * 1024;

// Tools that look for leaks keep what was freed for a while; they report at the end.
bool isWatchedByTool()
{
    return ::dlsym(RTLD_DEFAULT, "__asan_init") != nullptr || qgetenv("LD_PRELOAD").contains("valgrind");
}

int transactionsWanted()
{
    const int wanted = qEnvironmentVariableIntValue("SOAK_TRANSACTIONS");
    return wanted > 0 ? wanted : DefaultTransactions;
}

// What a fault leads to. "" is success.
QStringList outcomesOf(const Fault &fault)
{
    switch (fault.kind) {
    case Fault::Silence:
    case Fault::Delay:
    case Fault::Merge:
    case Fault::Reset:
    case Fault::Close:
    case Fault::HalfOpen: return {"PLC no response"};
    case Fault::Truncate: return {"received bytes < 5", "packet loss"};
    case Fault::WrongStation: return {"invalid slave id:2"};
    case Fault::WrongFunction: return {"invalid response"};
    case Fault::WrongCrc: return {"CRC error"};
    case Fault::Exception: return {"exception code:0x04"};
    default: return {""};
    }
}

// Faults whose outcome is certain. Former replies end in many ways and are tried elsewhere.
Fault drawFault(std::mt19937 &random)
{
    // Those that cost a time-out are drawn less often.
    static const std::vector<Fault::Kind> quick{Fault::WrongCrc,  Fault::Exception, Fault::JunkBefore,
                                                Fault::JunkAfter, Fault::Split,     Fault::Double,
                                                Fault::Echo,      Fault::Reset,     Fault::Close};
    static const std::vector<Fault::Kind> slow{Fault::Silence,      Fault::Delay,    Fault::Merge,
                                               Fault::HalfOpen,     Fault::Truncate, Fault::WrongStation,
                                               Fault::WrongFunction};
    const std::vector<Fault::Kind> &kinds = random() % 5 == 0 ? slow : quick;
    Fault fault;
    fault.kind = kinds.at(random() % kinds.size());
    if (fault.kind == Fault::Delay)
        fault.value = Timeout + 20;
    return fault;
}

// The registers and coils of the slave as the driver's writes have left them.
class Soak
{
public:
    Soak()
    {
        EXPECT_TRUE(layProjectBesideProgram());
        EXPECT_TRUE(slave.start());
        link = std::make_unique<DriverLink>(channelTo(slave.port(), Timeout));
    }

    void run(int transactions)
    {
        for (int i = 0; i < transactions && !testing::Test::HasFailure(); ++i)
            transact();
    }

    SlaveThread slave;
    std::unique_ptr<DriverLink> link;
    std::map<Fault::Kind, int> faults;
    int failures = 0;
    int stalls = 0;

private:
    void transact()
    {
        const bool isSpoilt = static_cast<int>(random() % 100) < FaultPercent;
        const Fault fault = isSpoilt ? drawFault(random) : Fault();
        if (isSpoilt) {
            slave.inject(fault);
            ++faults[fault.kind];
        }
        QElapsedTimer clock;
        clock.start();
        const int kind = static_cast<int>(random() % 6);
        switch (kind) {
        case 0: readRegisters(); break;
        case 1: readCoils(); break;
        case 2: writeRegisters("HR", pick(1, 60), fault); break;
        case 3: writeRegisters("FN6HR", 1, fault); break;
        case 4: writeCoils("DO", pick(25, 200), fault); break;
        default: writeCoils("FN5DO", 1, fault); break;
        }
        account(fault, clock.elapsed());
    }

    void account(const Fault &fault, qint64 elapsed)
    {
        const QString error = link->error();
        failures += error.isEmpty() ? 0 : 1;
        // A machine that is busy elsewhere for a whole time-out is no fault of the link.
        if (fault.kind == Fault::None && error == QLatin1String("PLC no response") && elapsed >= Timeout) {
            ++stalls;
            return;
        }
        EXPECT_TRUE(outcomesOf(fault).contains(error))
            << error.toStdString() << " with fault " << faultName(fault.kind).toStdString();
    }

    void readRegisters()
    {
        const int count = pick(1, 125);
        const int offset = pick(0, Size - count);
        const std::vector<int> words = link->readWords(QStringLiteral("HR%1").arg(offset + 1), count);
        const auto first = registers.begin() + offset;
        EXPECT_TRUE(link->error().isEmpty() ? words == std::vector<int>(first, first + count)
                                            : words.empty());
    }

    void readCoils()
    {
        const int count = pick(1, 1000);
        const int offset = pick(0, Size - count);
        const QByteArray bits = link->read(Bits, count, QStringLiteral("DO%1").arg(offset + 1));
        EXPECT_TRUE(link->error().isEmpty() ? bits == packed(offset, count) : bits.isEmpty());
    }

    void writeRegisters(const char *area, int count, const Fault &fault)
    {
        const int offset = pick(0, Size - count);
        std::vector<int> values;
        for (int i = 0; i < count; ++i)
            values.push_back(pick(0, 0xFFFF));
        link->writeWords(QStringLiteral("%1%2").arg(area).arg(offset + 1), values);
        // A spoilt reply says nothing of what the slave has done, a refusal does.
        if (fault.kind != Fault::Exception)
            std::copy(values.begin(), values.end(), registers.begin() + offset);
    }

    void writeCoils(const char *area, int count, const Fault &fault)
    {
        const int offset = pick(0, Size - count);
        const std::vector<bool> before(coils.begin() + offset, coils.begin() + offset + count);
        for (int i = 0; i < count; ++i)
            coils.at(static_cast<size_t>(offset + i)) = pick(0, 1) != 0;
        link->write(Bits, count, QStringLiteral("%1%2").arg(area).arg(offset + 1), packed(offset, count));
        if (fault.kind == Fault::Exception)
            std::copy(before.begin(), before.end(), coils.begin() + offset);
    }

    QByteArray packed(int offset, int count) const
    {
        QByteArray bytes((count + 7) / 8, '\0');
        for (int i = 0; i < count; ++i) {
            if (coils.at(static_cast<size_t>(offset + i)))
                bytes[i / 8] = static_cast<char>(bytes.at(i / 8) | 1 << i % 8);
        }
        return bytes;
    }

    int pick(int min, int max)
    {
        return min + static_cast<int>(random() % static_cast<quint32>(max - min + 1));
    }

    static const int Size = 2000;
    std::mt19937 random{20240607};
    std::vector<int> registers = std::vector<int>(Size);
    std::vector<bool> coils = std::vector<bool>(Size);
};

TEST(Soak, NothingIsWrongLostOrPilesUp)
{
    const int transactions = transactionsWanted();
    Soak soak;
    soak.run(transactions / 4);
    const qint64 memoryBefore = residentBytes();
    soak.link->channel().close();
    ASSERT_TRUE(waitUntil([&] { return soak.slave.counts().openConnections == 0; }));
    const int filesBefore = openFiles();

    soak.run(transactions - transactions / 4);
    soak.link->channel().close();
    EXPECT_TRUE(waitUntil([&] { return soak.slave.counts().openConnections == 0; }));
    EXPECT_EQ(filesBefore, openFiles());
    if (!isWatchedByTool()) {
        EXPECT_LE(residentBytes() - memoryBefore, MostGrowth);
    }

    int injected = 0;
    const SlaveCounts counts = soak.slave.counts();
    for (const auto &[kind, count] : soak.faults) {
        EXPECT_EQ(static_cast<quint64>(count), counts.faults.value(kind)) << faultName(kind).toStdString();
        injected += count;
    }
    EXPECT_GT(injected, transactions * FaultPercent / 200);
    EXPECT_LE(soak.stalls, 2 + transactions / 5000);
    EXPECT_LE(counts.requests, static_cast<quint64>(transactions));
    EXPECT_GE(counts.requests, static_cast<quint64>(transactions - soak.stalls));
    RecordProperty("transactions", transactions);
    RecordProperty("faults", injected);
    RecordProperty("failures", soak.failures);
    RecordProperty("stalls", soak.stalls);
    RecordProperty("growth", std::to_string(residentBytes() - memoryBefore));
}

} // namespace
