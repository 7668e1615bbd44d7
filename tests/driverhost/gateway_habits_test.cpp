#include "tests/driverhost/support/slave_test.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>

#include <ostream>

// Watches of 40 points behind gateways and lines with habits of their own: the values are right all the same,
// few of them are missing, and the person is told what it is.

namespace
{

const int Points = 40;
const char PointList[] = "HR1..10 HR1001..1010 IR1..10 IR1001..1010";

int valueAt(const QString &address)
{
    const bool isInput = address.startsWith(QLatin1String("IR"));
    return address.mid(2).toInt() * 37 % 40000 + (isInput ? 20000 : 0);
}

SlaveMemory knownMemory()
{
    SlaveMemory memory;
    for (const int first : {1, 1001}) {
        for (int number = first; number < first + 10; ++number) {
            const auto offset = static_cast<quint16>(number - 1);
            const QString text = QString::number(number);
            memory.setValue(0, Area::HoldingRegisters, offset, static_cast<quint16>(valueAt("HR" + text)));
            memory.setValue(0, Area::InputRegisters, offset, static_cast<quint16>(valueAt("IR" + text)));
        }
    }
    return memory;
}

struct Watched {
    int values = 0;
    int wrong = 0;
    int missing = 0;
    int missingInLastRound = 0;
    qint64 longestGap = 0; // milliseconds without a value
    QString told;

    void add(const QJsonObject &row)
    {
        const bool isMissing = row.contains("error");
        missing += isMissing ? 1 : 0;
        const int index = values++ % Points;
        missingInLastRound = (index == 0 ? 0 : missingInLastRound) + (isMissing ? 1 : 0);
        if (isMissing)
            return;
        wrong += row.value("value").toInt() == valueAt(row.value("address").toString()) ? 0 : 1;
        const QDateTime time = QDateTime::fromString(row.value("time").toString(), Qt::ISODateWithMs);
        longestGap = qMax(longestGap, m_last.isValid() ? m_last.msecsTo(time) : 0);
        m_last = time;
    }

private:
    QDateTime m_last;
};

Watched watch(SlaveThread &slave, const char *arguments)
{
    const QString words =
        QStringLiteral("watch rtutcp://127.0.0.1:%1/1 %2 --timeout 150 --format json %3")
            .arg(QString::number(slave.port()), QLatin1String(PointList), QLatin1String(arguments));
    const HostRun run = runHost(words.split(QLatin1Char(' ')));
    EXPECT_EQ(0, run.code) << run.err.toStdString();
    Watched watched;
    watched.told = run.err;
    for (const QString &line : run.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const QJsonObject row = QJsonDocument::fromJson(line.toUtf8()).object();
        if (row.contains("address"))
            watched.add(row);
    }
    return watched;
}

struct Habit {
    const char *name;
    const char *fault; // nullptr: none
    void (*set)(SlaveOptions &);
    const char *arguments;
    double mostMissing;
    const char *told;
};

void PrintTo(const Habit &habit, std::ostream *stream)
{
    *stream << habit.name;
}

SlaveOptions optionsOf(const Habit &habit)
{
    SlaveOptions options;
    options.memory = knownMemory();
    options.latencyMs = 3;
    EXPECT_TRUE(habit.fault == nullptr || options.faults.add(habit.fault));
    if (habit.set != nullptr)
        habit.set(options);
    return options;
}

const Habit habits[] = {
    {"registration", "close=1/20", [](SlaveOptions &options) { options.gateway.banner = "gateway 0815\r\n"; },
     "--interval 0 --count 20", 0.1, "registration or heartbeat packets"},
    {"heartbeat", nullptr,
     [](SlaveOptions &options) {
         options.gateway.heartbeat = "alive 0815\n";
         options.gateway.heartbeatMs = 29;
     },
     "--interval 0 --count 40", 0.1, "registration or heartbeat packets"},
    {"other master", "other-master:99=1/3", nullptr, "--interval 0 --count 20", 0.1,
     "the last of station 99: another master is on the line"},
    {"slot", "close=1/60", [](SlaveOptions &options) { options.gateway.slotHeldMs = 400; },
     "--interval 0 --duration 4", 0.5, "slot, or its limit of connections, is taken"},
    {"idle close", nullptr, [](SlaveOptions &options) { options.gateway.idleCloseMs = 60; },
     "--interval 0.2 --count 8", 0, "the gateway's time for idle connections"},
    {"echo", "echo=1/1", nullptr, "--interval 0 --count 20", 0.1, "switch that off in the gateway"},
    {"late", "late:300=1/10", nullptr, "--interval 0 --count 20", 0.1,
     "the time-out is too short for this line"},
};

class Gateways : public testing::TestWithParam<Habit>
{
};

} // namespace

TEST_P(Gateways, LeaveTheValuesRight)
{
    const Habit &habit = GetParam();
    SlaveThread slave(optionsOf(habit));
    ASSERT_TRUE(slave.start());
    const Watched watched = watch(slave, habit.arguments);
    EXPECT_EQ(0, watched.wrong);
    EXPECT_GE(watched.values, 8 * Points);
    EXPECT_LE(watched.missing, habit.mostMissing * watched.values);
    EXPECT_LT(watched.longestGap, 2400) << "a slot that is free again is taken within two seconds";
    EXPECT_TRUE(watched.told.contains(QLatin1String(habit.told))) << watched.told.toStdString();
}

INSTANTIATE_TEST_SUITE_P(All, Gateways, testing::ValuesIn(habits));

struct PassingFault {
    Fault fault;
    int replies;
};

class FaultsThatPass : public testing::TestWithParam<PassingFault>
{
};

TEST_P(FaultsThatPass, LeaveCompleteRounds)
{
    SlaveOptions options;
    options.memory = knownMemory();
    SlaveThread slave(options);
    ASSERT_TRUE(slave.start());
    slave.inject(GetParam().fault, GetParam().replies);
    const Watched watched = watch(slave, "--interval 0.02 --count 8");
    EXPECT_EQ(0, watched.wrong);
    EXPECT_EQ(0, watched.missingInLastRound);
    EXPECT_GE(slave.counts().faults.value(GetParam().fault.kind), 4u);
}

INSTANTIATE_TEST_SUITE_P(All, FaultsThatPass,
                         testing::Values(PassingFault{{Fault::Echo}, 12},
                                         PassingFault{{Fault::OtherMaster, 7}, 12},
                                         PassingFault{{Fault::Late, 300}, 6},
                                         PassingFault{{Fault::Silence}, 6}, PassingFault{{Fault::Reset}, 6}));
