// What becomes of readings that fail, through the real driver.

#include "desk/live/planned_readings.h"

#include "desk/plan/tag_readings.h"
#include "tests/lines/layouts.h"
#include "tests/lines/serial_line.h"
#include "tests/peers/driver_link.h"
#include "tests/peers/running_slave.h"
#include "tests/peers/test_files.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

namespace
{

// Every reading as a word: "HR1 given", "HR1 exception", "HR1 not asked: TEXT".
class Listener : public ReadingListener
{
public:
    explicit Listener(const std::vector<Reading> &readings, int reports = -1)
        : m_readings(readings), m_wanted(reports)
    {
    }

    bool add(size_t reading, const QByteArray & /*data*/) override
    {
        return take({reading}, QStringLiteral("given"));
    }
    bool addFailure(const std::vector<size_t> &readings, const Failure &failure) override
    {
        return take(readings, nameOf(failure.kind));
    }
    bool addNotAsked(const std::vector<size_t> &readings, const Failure &failure) override
    {
        return take(readings, QStringLiteral("not asked: ") + failure.text);
    }
    void addCommand(bool /*isRead*/) override { ++commands; }

    QStringList lines;
    int commands = 0;

private:
    bool take(const std::vector<size_t> &readings, const QString &what)
    {
        for (const size_t reading : readings)
            lines += labelOf(m_readings[reading]) + QLatin1Char(' ') + what;
        return --m_wanted != 0;
    }

    const std::vector<Reading> &m_readings;
    int m_wanted; // after how many reports there is no interest any more
};

LinkSettings settingsWith(quint16 port)
{
    LinkSettings settings;
    settings.channel = channelTo(port, 3000);
    return settings;
}

// Tags; bytes of bits, which are asked for as they are and come last, as "DI1:u8".
std::vector<Reading> readingsOf(const QStringList &tags)
{
    std::vector<Reading> readings = tagReadingsOf(tags, WordItem, ValueForm::Unsigned).readings;
    for (const QString &tag : tags) {
        if (!tag.endsWith(QLatin1String(":u8")))
            continue;
        const Result<Address> address = parseAddress(tag.section(QLatin1Char(':'), 0, 0));
        for (const Reading &reading :
             valueReadingsOf({namelessPoint(*typedItems(*address, {Meaning::Unsigned, 8}))}))
            readings.push_back(reading);
    }
    return readings;
}

// Readings by a session on a simulated line, or of a slave on a port.
struct Link {
    Link(const QStringList &tags, const PlanDevice &device)
        : readings(readingsOf(tags)),
          settings(settingsWith(502)),
          setting(deviceSettingOf(settings.channel)),
          line(device),
          session(pluginFile(), settings, std::make_unique<LineChannel>(line, &setting, settings.channel)),
          planned(session, readings, learnt)
    {
    }
    Link(const QStringList &tags, quint16 port)
        : readings(readingsOf(tags)),
          settings(settingsWith(port)),
          line(none),
          session(pluginFile(), settings),
          planned(session, readings, learnt)
    {
    }

    QStringList round(int reports = -1)
    {
        Listener listener(readings, reports);
        planned.readRound(listener);
        return listener.lines;
    }

    // Whether one of the next rounds has a line that begins so.
    bool roundThatSays(const char *beginning)
    {
        for (int i = 0; i < 9; ++i) {
            for (const QString &told : round()) {
                if (told.startsWith(QLatin1String(beginning)))
                    return true;
            }
        }
        return false;
    }

    const PlanDevice none;
    std::vector<Reading> readings;
    LinkSettings settings;
    DeviceSetting setting;
    SerialLine line;
    Session session;
    Learnt learnt;
    PlannedReadings planned;
};

} // namespace

class PlannedFailuresTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(layProjectBesideProgram({QStringLiteral("DI3")})); }
};

TEST_F(PlannedFailuresTest, GoOnAsTheExceptionHasIt)
{
    const struct {
        int exception;
        QStringList lines;
        quint64 requests;
    } cases[] = {
        {1, {"IR1 exception", "HR1 given", "HR1000 given"}, 3},
        {2, {"IR1 exception", "HR1 given", "HR1000 given"}, 3},
        {6, {"IR1 exception", "HR1 given", "HR1000 given"}, 3},
        {10, {"IR1 exception", "HR1 exception", "HR1000 exception"}, 1},
        {11, {"IR1 exception", "HR1 given", "HR1000 given"}, 3},
    };
    for (const auto &one : cases) {
        RunningSlave slave;
        slave.inject({Fault::Exception, one.exception});
        Link link({"HR1", "HR1000", "IR1"}, slave.port());
        EXPECT_EQ(link.round(), one.lines) << one.exception;
        EXPECT_EQ(slave.counts().requests, one.requests) << one.exception;
    }
}

TEST_F(PlannedFailuresTest, AreThoseOfAllWhereThereIsNoConnection)
{
    RunningSlave slave;
    const quint16 port = slave.port();
    slave.stop();
    Link link({"HR1", "IR1", "DI1:u8", "DO1:u8"}, port);
    EXPECT_EQ(link.round(), (QStringList{"IR1 no-connection", "HR1 no-connection", "DI1 no-connection",
                                         "DO1 no-connection"}));
    link.planned.explore();
}

TEST_F(PlannedFailuresTest, OfOneThatIsReadAsItIsLeaveTheOthers)
{
    RunningSlave slave;
    slave.inject({Fault::Exception, 2});
    Link link({"DI1:u8", "DI3:u8"}, slave.port());
    EXPECT_EQ(link.round(), (QStringList{"DI1 exception", "DI3 given"}));
    EXPECT_EQ(link.round(1), QStringList{"DI1 given"}) << "nobody wants more";
    EXPECT_EQ(slave.counts().requests, 3u);
}

TEST_F(PlannedFailuresTest, AreNotReportedWhereNobodyWaitedForThem)
{
    PlanDevice device;
    Link link({"DI1:u8", "DI3:u8"}, device);
    link.session.channel().setCancelled([&] { return link.line.requests() > 0; });
    EXPECT_TRUE(link.round().isEmpty());
    EXPECT_EQ(link.line.requests(), 1);
    link.planned.explore();
    EXPECT_EQ(link.line.requests(), 1);
}

TEST_F(PlannedFailuresTest, OfWhatIsNeverAnsweredAreToldWithoutAsking)
{
    PlanDevice device;
    device.holesAre = PlanDevice::BySilence;
    device.holes[{1, Area::HoldingRegisters}] = {1};
    Link link({"HR1", "HR2", "HR3"}, device);
    EXPECT_TRUE(link.roundThatSays("HR2 not asked: PLC no response before; not asked again until "));
    const int before = link.line.requests();
    EXPECT_EQ(link.round().filter(QStringLiteral("given")).size(), 2);
    EXPECT_EQ(link.line.requests(), before + 2);
}

// A station that does not answer is asked for one thing alone, and then less often.
TEST_F(PlannedFailuresTest, OfAStationAreToldWithoutAsking)
{
    PlanDevice device;
    device.holesAre = PlanDevice::BySilence;
    for (int offset = 0; offset < 16; ++offset)
        device.holes[{1, Area::DiscreteInputs}].insert(offset);
    Link link({"DI1:u8", "DI3:u8"}, device);
    StationPacing pacing;
    link.planned.setPacing(&pacing);
    EXPECT_EQ(link.round(), (QStringList{"DI1 no-reply", "DI3 no-reply"}));
    EXPECT_TRUE(link.roundThatSays("DI3 not asked: PLC no response before; asked again in "));
}
