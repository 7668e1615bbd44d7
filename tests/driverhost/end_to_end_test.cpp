#include "apps/driverhost/commands/demo_cases.h"
#include "desk/items/value_form.h"
#include "desk/items/value_place.h"
#include "desk/link/loaded_driver.h"
#include "desk/link/tcp_channel.h"
#include "desk/project/project_file.h"
#include "tests/driverhost/support/slave_test.h"

#include <QCoreApplication>
#include <QDir>

#include <random>

/// The plug-in file, a real channel and a slave whose answers are not ours: what a host goes through.

namespace
{

const int Timeout = 150;
const int Operations = 3000;
const int UsedNumbers = 64; // addresses of the random operations: 1 to 64 in each area

SlaveOptions withHole()
{
    SlaveOptions options;
    options.memory.addHole({0, Area::Coils, 200, 200});
    return options;
}

// The driver looks for its project beside the running program.
bool layProject()
{
    Project project;
    project.links = {{1, 2000}};
    project.nodes = {{1, 1, true, QStringLiteral("127.0.0.1"), 502}};
    for (int number = 1; number <= UsedNumbers + 16; ++number)
        project.tags += {{1, QStringLiteral("DO%1").arg(number)}, {1, QStringLiteral("1-DI%1").arg(number)}};
    // Coil 201 is a hole of the slave, and no tag lies on it.
    project.tags += {{1, QStringLiteral("DO200")}, {1, QStringLiteral("DO202")}};
    const QString folder = QCoreApplication::applicationDirPath() + QStringLiteral("/compile/database");
    return QDir().mkpath(folder) && writeProjectFile(folder + QStringLiteral("/database"), project).isGood();
}

ChannelSettings settingsFor(const SlaveThread &slave, int retries)
{
    ChannelSettings settings;
    settings.host = QStringLiteral("127.0.0.1");
    settings.port = slave.port();
    settings.timeout = Timeout;
    settings.retries = retries;
    return settings;
}

Items itemsAt(const QString &text, ItemKind kind, int count = 1)
{
    Items items;
    items.address = parseAddress(text).valueOr(Address());
    items.kind = kind;
    items.count = count;
    EXPECT_TRUE(checkItems(items)) << text.toStdString();
    return items;
}

} // namespace

class EndToEndTest : public SlaveTest
{
protected:
    EndToEndTest() : SlaveTest(withHole()) {}

    void SetUp() override
    {
        ASSERT_TRUE(layProject());
        SlaveTest::SetUp();
        ASSERT_TRUE(driver.isLoaded()) << driver.errorString().toStdString();
    }
    // What the slave holds where the items lie.
    std::vector<quint32> inSlave(const Items &items)
    {
        std::vector<quint32> values;
        for (int i = 0; i < items.count; ++i)
            values.push_back(valueInSlave(slave, items, i));
        return values;
    }
    QByteArray read(TcpChannel &channel, const Items &items)
    {
        return driver->read(&channel, items.command());
    }

    LoadedDriver driver{pluginFile()};
};

TEST_F(EndToEndTest, RandomReadsAndWritesAgreeWithTheSlave)
{
    const unsigned int seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    const auto pick = [&](int lowest, int highest) {
        return std::uniform_int_distribution<int>(lowest, highest)(random);
    };
    const std::vector<DemoCase> cases = demoCases();
    TcpChannel channel(settingsFor(slave, 0));

    for (int operation = 0; operation < Operations; ++operation) {
        const DemoCase &demoCase = cases[static_cast<size_t>(pick(0, static_cast<int>(cases.size()) - 1))];
        Items items = demoCase.items;
        items.address.number = pick(1, UsedNumbers - 2 * 8);
        items.count = pick(1, 2);
        std::vector<quint32> values;
        for (int i = 0; i < items.count; ++i)
            values.push_back(static_cast<quint32>(random()) >> (32 - widthOf(items.kind)));
        SCOPED_TRACE(testing::Message()
                     << nameOf(items.kind).toStdString() << ' ' << items.label(0).toStdString());
        if (demoCase.isWritten) {
            ASSERT_TRUE(
                driver->write(&channel, items.command(), dataOf(valuesOf(values, items), typed(items))))
                << driver->getLastError().toStdString();
            ASSERT_EQ(inSlave(items), values);
        } else {
            for (int i = 0; i < items.count; ++i)
                putIntoSlave(slave, items, i, values[static_cast<size_t>(i)]);
        }
        const QByteArray data = read(channel, items);
        ASSERT_FALSE(driver->hasError()) << driver->getLastError().toStdString();
        ASSERT_EQ(numbersOf(valuesIn(data, typed(items))), values);
    }
    EXPECT_EQ(slave.counts().connections, 1u);
}

TEST_F(EndToEndTest, AsksOnlyForBitsThatTheProjectUses)
{
    slave.setValue(1, Area::Coils, 199, 1);
    slave.setValue(1, Area::Coils, 201, 1);
    TcpChannel channel(settingsFor(slave, 0));
    const QByteArray data = read(channel, itemsAt(QStringLiteral("DO200"), ByteItem));
    EXPECT_EQ(data, QByteArray::fromHex("05")) << driver->getLastError().toStdString();
    EXPECT_TRUE(read(channel, itemsAt(QStringLiteral("DO200"), BitItem, 3)).isEmpty());
    EXPECT_EQ(driver->getLastError(), QStringLiteral("exception code:0x02 (read 3 bit(s) from 1-DO200)"));
}

TEST_F(EndToEndTest, NoFaultOfOneReplySpoilsTheNext)
{
    setHoldingRegister(0, 0x1111);
    setHoldingRegister(1, 0x2222);
    TcpChannel channel(settingsFor(slave, 0));
    const Items first = itemsAt(QStringLiteral("HR1"), WordItem);
    const Items second = itemsAt(QStringLiteral("HR2"), WordItem);
    for (const Fault &fault :
         {Fault{Fault::Silence, -1}, Fault{Fault::Delay, 2 * Timeout}, Fault{Fault::Truncate, 3},
          Fault{Fault::Truncate, 6}, Fault{Fault::WrongStation, 9}, Fault{Fault::WrongCrc, -1},
          Fault{Fault::WrongFunction, 4}, Fault{Fault::Exception, 6}, Fault{Fault::JunkBefore, 3},
          Fault{Fault::JunkAfter, 3}, Fault{Fault::Double, -1}, Fault{Fault::Reset, -1},
          Fault{Fault::Close, -1}, Fault{Fault::HalfOpen, -1}}) {
        SCOPED_TRACE(faultName(fault.kind).toStdString());
        slave.inject(fault);
        const QByteArray spoilt = read(channel, first);
        EXPECT_TRUE(spoilt.isEmpty() || spoilt == QByteArray::fromHex("1111"));
        // A connection that the slave has broken may cost one more attempt.
        QByteArray data;
        EXPECT_TRUE(waitUntil([&] {
            data = read(channel, second);
            return !data.isEmpty();
        })) << driver->getLastError().toStdString();
        EXPECT_EQ(data, QByteArray::fromHex("2222"));
    }
}

TEST_F(EndToEndTest, ASlaveThatComesBackIsFoundAgain)
{
    setHoldingRegister(0, 7);
    TcpChannel channel(settingsFor(slave, 0));
    const Items items = itemsAt(QStringLiteral("HR1"), WordItem);
    EXPECT_FALSE(read(channel, items).isEmpty());
    slave.stop();
    EXPECT_TRUE(read(channel, items).isEmpty());
    EXPECT_TRUE(read(channel, items).isEmpty());
    EXPECT_EQ(driver->getLastError(),
              QStringLiteral("cannot connect to 127.0.0.1:%1: Connection refused").arg(slave.port()));
    ASSERT_TRUE(slave.start());
    EXPECT_FALSE(read(channel, items).isEmpty()) << driver->getLastError().toStdString();
}

TEST_F(EndToEndTest, EveryDriverObjectHasItsOwnErrorAndProject)
{
    TcpChannel channel(settingsFor(slave, 0));
    const std::unique_ptr<DriverInterface> other = driver.createAnother();
    ASSERT_TRUE(other);
    EXPECT_FALSE(read(channel, itemsAt(QStringLiteral("HR1"), WordItem)).isEmpty());

    ChannelSettings foreign = settingsFor(slave, 0);
    foreign.device = QStringLiteral("COM7");
    TcpChannel foreignChannel(foreign);
    EXPECT_TRUE(other->read(&foreignChannel, itemsAt(QStringLiteral("HR1"), WordItem).command()).isEmpty());
    EXPECT_EQ(other->getLastError(), QStringLiteral("failed to get default station id"));
    EXPECT_FALSE(driver->hasError());
}
