#include "tests/driverhost/support/slave_test.h"

#include <QFile>
#include <QTemporaryDir>

// A table of points that is read once.

namespace
{

const char Table[] = "name,address,type\n"
                     "last,HR9,\n"
                     "first,HR1,i16\n"
                     "door,DI3,\n"
                     "speed,HR4:f32@ABCD,\n";

SlaveOptions withHole()
{
    SlaveOptions options;
    options.memory.addHole({0, Area::HoldingRegisters, 6, 6});
    return options;
}

} // namespace

class ReadPointsTest : public SlaveTest
{
protected:
    ReadPointsTest() : SlaveTest(withHole()) {}

    void SetUp() override
    {
        SlaveTest::SetUp();
        QFile file(table());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(Table);
        setHoldingRegister(0, 11);
        setHoldingRegister(8, 99);
    }
    QString table() const { return folder.filePath(QStringLiteral("points.csv")); }
    QString learnt() const { return folder.filePath(QStringLiteral("learnt")); }
    HostRun read(const QString &arguments)
    {
        const SlaveCounts before = slave.counts();
        HostRun run = host(QStringLiteral("read TARGET --points %1 ").arg(table()) + arguments);
        const SlaveCounts after = slave.counts();
        requests = after.requests - before.requests;
        refusals = after.exceptions - before.exceptions;
        return run;
    }

    QTemporaryDir folder;
    quint64 requests = 0;
    quint64 refusals = 0;
};

TEST_F(ReadPointsTest, AsksForRangesAndPrintsInTheOrderOfTheTable)
{
    const HostRun run = read(QStringLiteral("--format csv --learnt ") + learnt());
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    const QStringList lines = run.out.split(QLatin1Char('\n'));
    ASSERT_GE(lines.size(), 5);
    EXPECT_TRUE(lines.at(1).startsWith(QLatin1String("last,1,HR9,8,u16,99,"))) << run.out.toStdString();
    EXPECT_TRUE(lines.at(2).startsWith(QLatin1String("first,1,HR1,0,i16,11,"))) << run.out.toStdString();
    EXPECT_TRUE(lines.at(3).startsWith(QLatin1String("door,1,DI3,"))) << run.out.toStdString();
    EXPECT_TRUE(lines.at(4).startsWith(QLatin1String("speed,1,HR4,"))) << run.out.toStdString();
    EXPECT_GT(refusals, 0u) << "HR7 is not there";

    read(QStringLiteral("--learnt ") + learnt());
    EXPECT_EQ(requests, 3u) << "HR1..5, HR9 and DI3";
    EXPECT_EQ(refusals, 0u);
}

TEST_F(ReadPointsTest, ReadsNothingBetweenThemWhereItMustNot)
{
    read(QStringLiteral("--no-fill"));
    EXPECT_EQ(requests, 4u);
    EXPECT_EQ(refusals, 0u);
    read(QStringLiteral("first speed --one-by-one"));
    EXPECT_EQ(requests, 2u);
}

TEST_F(ReadPointsTest, AsksForEachAddressByItselfWithoutATable)
{
    const SlaveCounts before = slave.counts();
    EXPECT_EQ(host(QStringLiteral("read TARGET HR1 HR2 HR3")).code, 0);
    EXPECT_EQ(slave.counts().requests - before.requests, 3u);
    const HostRun run = host(QStringLiteral("read TARGET HR1 --no-fill"));
    EXPECT_EQ(run.code, 2);
    EXPECT_TRUE(run.err.contains(QLatin1String("--no-fill goes with --points"))) << run.err.toStdString();
}

TEST_F(ReadPointsTest, NamesWhatCouldNotBeRead)
{
    const HostRun run = read(QStringLiteral("HR7 first HR8 --format csv --retries 0"));
    EXPECT_EQ(run.code, 5);
    EXPECT_TRUE(run.err.contains(QLatin1String("HR7: exception code:0x02"))) << run.err.toStdString();
    EXPECT_FALSE(run.err.contains(QLatin1String("HR8:"))) << run.err.toStdString();
    const QStringList lines = run.out.split(QLatin1Char('\n'));
    EXPECT_TRUE(lines.value(1).contains(QLatin1String("HR7"))) << run.out.toStdString();
    EXPECT_TRUE(lines.value(2).startsWith(QLatin1String("first,1,HR1,0,i16,11,"))) << run.out.toStdString();
}

TEST_F(ReadPointsTest, SaysWhatToExpectOfABroadcast)
{
    const HostRun run = read(QStringLiteral("0-HR1 0-HR2 --retries 0 --timeout 100"));
    EXPECT_NE(run.code, 0);
    EXPECT_EQ(run.err.count(QLatin1String("station 0 is a broadcast")), 1) << run.err.toStdString();
}

TEST_F(ReadPointsTest, SaysOnceThatItTookSeveralAttempts)
{
    slave.inject(Fault{Fault::WrongCrc, -1}, 1);
    const HostRun run = read(QStringLiteral("first speed --settle off"));
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(run.err, QStringLiteral("first: answered at attempt 2 of 4\n"));
}
