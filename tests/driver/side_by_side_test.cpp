// Several links in one process, one driver object in each thread of the host.
//
// An object names its database connection by a random number from qrand() when it is made. qrand() has a
// sequence of its own in each thread, and without qsrand() all of them are the same, so a host that makes its
// objects in its threads calls qsrand() there first, with another number in each; or it makes them all in one
// thread.

#include "tests/doubles/model_slave.h"
#include "tests/support/driver_test.h"
#include "tests/support/random_data.h"

#include <QSqlDatabase>

#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

namespace
{

const int Links = 4;

/// A thread that is over when the object is gone.
class JoiningThread
{
public:
    explicit JoiningThread(const std::function<void()> &function) : thread(function) {}
    ~JoiningThread() { thread.join(); }

    JoiningThread(const JoiningThread &) = delete;
    JoiningThread &operator=(const JoiningThread &) = delete;

private:
    std::thread thread;
};

void inOtherThread(const std::function<void()> &function)
{
    const JoiningThread thread(function);
}

/// Holds threads until all of them are there.
class Gate
{
public:
    explicit Gate(int threads) : missing(threads) {}

    void pass()
    {
        std::unique_lock<std::mutex> lock(mutex);
        --missing;
        opened.notify_all();
        opened.wait(lock, [this] { return missing == 0; });
    }

private:
    std::mutex mutex;
    std::condition_variable opened;
    int missing;
};

QStringList tagsOfStations(int stations)
{
    QStringList tags;
    for (int station = 1; station <= stations; ++station)
        tags << QString::fromLatin1("%1-DI1").arg(station) << QString::fromLatin1("%1-DI%1").arg(station)
             << QString::fromLatin1("%1-DO16").arg(station);
    return tags;
}

/// A driver, its channel and the slave at its end, whose memory no other slave has.
struct Link {
    explicit Link(int station) : number(station), slave(station)
    {
        channel.station = station;
        channel.setResponder([this](const QByteArray &request) { return slave.answer(request); });
        for (size_t i = 0; i < slave.holdingRegisters.size(); ++i)
            slave.holdingRegisters[i] = registerAt(static_cast<int>(i));
        slave.discreteInputs.assign(slave.discreteInputs.size(), 1);
    }

    std::uint16_t registerAt(int i) const { return static_cast<std::uint16_t>(i * 7 + number * 1000); }

    QByteArray read(int dataType, const char *address, int count)
    {
        channel.forgetCalls();
        return driver.read(&channel, makeCommand(dataType, QLatin1String(address), count));
    }

    std::string error() { return errorOf(driver); }

    int number;
    ModelSlave slave;
    ScriptedChannel channel;
    DriverModbusRtuSlaveOverTcp driver;
};

void expectRegisters(Link &link, int first, int count)
{
    const QByteArray address = "HR" + QByteArray::number(first + 1);
    const QByteArray data = link.read(WordItem, address.constData(), count);
    ASSERT_EQ(data.size(), 2 * count) << link.error();
    for (int i = 0; i < count; ++i) {
        const int value =
            static_cast<unsigned char>(data.at(2 * i)) | static_cast<unsigned char>(data.at(2 * i + 1)) << 8;
        ASSERT_EQ(value, link.registerAt(first + i));
    }
}

// Bits 1 and `station` of each station's inputs are used, and all of them are set.
void expectUsedInputs(Link &link)
{
    const int expected = 1 | 1 << (link.number - 1);
    const QByteArray data = link.read(ByteItem, "DI1", 1);
    ASSERT_EQ(data.size(), 1) << link.error();
    ASSERT_EQ(static_cast<unsigned char>(data.at(0)), expected);
}

void expectWrite(Link &link, std::uint16_t value)
{
    const QByteArray data =
        QByteArray(1, static_cast<char>(value & 0xFF)) + QByteArray(1, static_cast<char>(value >> 8));
    link.channel.forgetCalls();
    ASSERT_TRUE(link.driver.write(&link.channel, makeCommand(WordItem, QLatin1String("HR60000"), 1), data))
        << link.error();
    ASSERT_EQ(link.slave.holdingRegisters[59999], value);
}

void exchangeALot(Link &link)
{
    const int rounds = 3000;
    for (int i = 0; i < rounds && !testing::Test::HasFatalFailure(); ++i) {
        expectRegisters(link, i * 13 % 50000, i % 125 + 1);
        expectUsedInputs(link);
        expectWrite(link, static_cast<std::uint16_t>(i + link.number));
    }
}

class SideBySide : public testing::Test
{
protected:
    SideBySide() : project(tagsOfStations(Links), 1) {}

    // The driver objects are gone when this runs; their connections are not.
    ~SideBySide() override
    {
        const QStringList names = connections();
        for (int i = 0; i < names.size(); ++i)
            QSqlDatabase::removeDatabase(names.at(i));
    }

    static QStringList connections() { return QSqlDatabase::connectionNames(); }

    ProjectDatabase project;
};

} // namespace

TEST_F(SideBySide, RandomNumbersStartTheSameInEveryThread)
{
    if (!CanSeedRandomNumbers)
        GTEST_SKIP() << "this Qt has random numbers that nobody can foresee";
    int first = 0;
    int second = 0;
    inOtherThread([&first] { first = nextRandomNumber(); });
    inOtherThread([&second] { second = nextRandomNumber(); });
    EXPECT_EQ(first, second);
}

TEST_F(SideBySide, SeedsMakeThemDiffer)
{
    int first = 0;
    int second = 0;
    inOtherThread([&first] {
        seedRandomNumbers(1001);
        first = nextRandomNumber();
    });
    inOtherThread([&second] {
        seedRandomNumbers(1002);
        second = nextRandomNumber();
    });
    EXPECT_NE(first, second);
}

// The second object finds a connection of its name and takes it for its own. Qt 5 does not hand it to another
// thread, so that driver never works; Qt 4.8 does, and two threads share what only one may use.
TEST_F(SideBySide, ObjectsMadeInThreadsWithoutSeedsGetTheSameConnection)
{
    if (!CanSeedRandomNumbers)
        GTEST_SKIP() << "this Qt has random numbers that nobody can foresee";
    const bool handsOverConnections = QT_VERSION < 0x050000;
    inOtherThread([&] {
        Link first(1);
        EXPECT_EQ(first.read(WordItem, "HR1", 1).size(), 2) << first.error();
        EXPECT_EQ(connections().size(), 1);
        inOtherThread([&] {
            Link second(2);
            for (int attempt = 0; attempt < 2; ++attempt) {
                const QByteArray data = second.read(WordItem, "HR1", 1);
                EXPECT_EQ(data.size(), handsOverConnections ? 2 : 0);
                EXPECT_EQ(second.error(), handsOverConnections ? NoError : NoStation);
            }
            EXPECT_EQ(connections().size(), 1);
        });
        EXPECT_EQ(first.read(WordItem, "HR1", 1).size(), 2) << "what is loaded does not need the connection";
    });
}

TEST_F(SideBySide, ObjectsMadeInSeededThreadsGetTheirOwn)
{
    for (unsigned int station = 1; station <= Links; ++station)
        inOtherThread([station] {
            seedRandomNumbers(1000 + station);
            Link link(static_cast<int>(station));
            EXPECT_EQ(link.read(WordItem, "HR1", 1).size(), 2) << link.error();
        });
    EXPECT_EQ(connections().size(), Links);
}

TEST_F(SideBySide, SeededLinksWorkAtTheSameTime)
{
    Gate gate(Links);
    {
        std::list<JoiningThread> threads;
        for (int station = 1; station <= Links; ++station)
            threads.emplace_back([station, &gate] {
                seedRandomNumbers(static_cast<unsigned int>(2000 + station));
                Link link(station);
                gate.pass();
                exchangeALot(link);
            });
    }
    EXPECT_EQ(connections().size(), Links);
}

TEST_F(SideBySide, ObjectsMadeInOneThreadWorkInOthers)
{
    std::list<Link> links;
    for (int station = 1; station <= Links; ++station)
        links.emplace_back(station);
    Gate gate(Links);
    {
        std::list<JoiningThread> threads;
        for (Link &link : links)
            threads.emplace_back([&link, &gate] {
                gate.pass();
                exchangeALot(link);
            });
    }
    EXPECT_EQ(connections().size(), Links);
}
