// Readings through the real driver, on a serial line that is simulated: what they bring, and how long they
// take.

#include "desk/live/planned_readings.h"

#include "desk/plan/tag_readings.h"
#include "tests/lines/best_plan.h"
#include "tests/lines/serial_line.h"
#include "tests/peers/driver_link.h"
#include "tests/peers/test_files.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

namespace
{

const int Retries = 3;

LinkSettings settingsWith(int timeout)
{
    LinkSettings settings;
    settings.channel.timeout = timeout;
    settings.channel.retries = Retries;
    return settings;
}

// A session whose driver talks to simulated devices.
struct SimulatedLink {
    explicit SimulatedLink(const PlanDevice &device, int timeout = 3000)
        : settings(settingsWith(timeout)),
          line(device),
          setting(deviceSettingOf(settings.channel)),
          session(pluginFile(), settings, std::make_unique<LineChannel>(line, &setting, settings.channel))
    {
        session.setRepeatsRefused(false);
    }

    LinkSettings settings;
    SerialLine line;
    DeviceSetting setting;
    Session session;
};

struct Reported {
    std::optional<QByteArray> data;
    std::optional<Failure> failure;
};

class Listener : public ReadingListener
{
public:
    explicit Listener(size_t count) : reported(count) {}

    bool add(size_t reading, const QByteArray &data) override
    {
        EXPECT_FALSE(reported[reading].data || reported[reading].failure) << "reported twice";
        reported[reading].data = data;
        return --wanted != 0;
    }
    bool addFailure(const std::vector<size_t> &readings, const Failure &failure) override
    {
        for (const size_t reading : readings) {
            EXPECT_FALSE(reported[reading].data || reported[reading].failure) << "reported twice";
            reported[reading].failure = failure;
        }
        return true;
    }
    bool addNotAsked(const std::vector<size_t> &readings, const Failure &failure) override
    {
        return addFailure(readings, failure);
    }
    void addCommand(bool isRead) override { ++(isRead ? commands : failedCommands); }

    std::vector<Reported> reported;
    int wanted = -1; // after how many reports there is no interest any more
    int commands = 0;
    int failedCommands = 0;
};

Point pointAt(const QString &text)
{
    const Result<TypedText> typed = parseTypedText(text);
    EXPECT_TRUE(typed) << text.toStdString();
    const Result<Address> address = parseAddress(typed->address);
    EXPECT_TRUE(address) << text.toStdString();
    const Result<TypedItems> items =
        typedItems(*address, *typed->type, typed->count.value_or(1), typed->order);
    EXPECT_TRUE(items) << items.errorText().toStdString();
    return namelessPoint(*items);
}

// Values of every sort that lie on the ranges.
std::vector<Point> pointsAt(const std::vector<AreaRange> &ranges)
{
    const char *const singles[] = {":u16", ".%1:bit", ":u8x2", ":i16@BA", ":u8"};
    const char *const doubles[] = {":u32", ":u32@ABCD", ":f32@DCBA", ":i32@BADC", ":str4"};
    std::vector<Point> points;
    for (size_t i = 0; i < ranges.size(); ++i) {
        AreaRange range = ranges[i];
        const bool isDouble = range.last > range.first;
        range.last = range.first;
        const QString type = isBitArea(range.area) ? QStringLiteral(":bit")
                             : isDouble            ? QString::fromLatin1(doubles[i % 5])
                             : i % 5 == 1 ? QStringLiteral(".%1:bit").arg(i / 5 % modbus::RegisterBits)
                                          : QString::fromLatin1(singles[i % 5]);
        points.push_back(pointAt(rangeText(range) + type));
    }
    return points;
}

// What the driver gives when a point is read on its own, value by value.
std::vector<std::optional<QByteArray>> readAlone(Session &session, const Point &point)
{
    std::vector<std::optional<QByteArray>> values;
    for (const Reading &reading : readingsOf(std::vector<Point>{point})) {
        const std::optional<QByteArray> data = session.read(reading.items);
        for (const Reading::Shown &shown : reading.shown)
            values.push_back(data ? std::optional<QByteArray>(valueAt(*data, shown.place)) : std::nullopt);
    }
    return values;
}

} // namespace

class PlannedReadingsTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { ASSERT_TRUE(layProjectBesideProgram({QStringLiteral("DI3")})); }
};

TEST_F(PlannedReadingsTest, BringWhatTheDriverGivesForEachAlone)
{
    for (unsigned int seed = 0; seed < 40; ++seed) {
        const Layout layout = seed == 0 ? mixedLayout(1) : randomLayout(seed);
        const std::vector<Point> points = pointsAt(layout.points);
        const std::vector<Reading> readings = valueReadingsOf(points);
        SimulatedLink link(layout.device);
        SimulatedLink alone(layout.device);
        std::vector<std::optional<QByteArray>> expected;
        for (const Point &point : points) {
            for (const std::optional<QByteArray> &value : readAlone(alone.session, point))
                expected.push_back(value);
        }
        ASSERT_EQ(expected.size(), readings.size());
        Learnt learnt;
        PlannedReadings planned(link.session, readings, learnt);
        for (int round = 1; round <= 3; ++round) {
            Listener listener(readings.size());
            ASSERT_TRUE(planned.readRound(listener));
            for (size_t i = 0; i < readings.size(); ++i) {
                const Reported &reported = listener.reported[i];
                ASSERT_NE(reported.data.has_value(), reported.failure.has_value());
                std::optional<QByteArray> value;
                if (reported.data)
                    value = valueAt(*reported.data, readings[i].shown.front().place);
                ASSERT_EQ(value, expected[i])
                    << "seed " << seed << ", round " << round << ", " << labelOf(readings[i]).toStdString();
            }
            planned.explore();
        }
    }
}

// As PlanClient has it, but by the clock of the line that the driver waits for.
TEST_F(PlannedReadingsTest, TakeWhatTheBestPlanTakesOnTheLine)
{
    for (const SerialTiming &timing :
         {SerialTiming{9600, 30000}, SerialTiming{19200, 10000}, SerialTiming{115200, 3000}}) {
        for (const auto make : {denseLayout, sparseLayout, scatteredLayout, mixedLayout}) {
            Layout layout = make(1);
            layout.device.timing = timing;
            const std::vector<Reading> readings = valueReadingsOf(pointsAt(layout.points));
            SimulatedLink link(layout.device);
            Learnt learnt;
            PlannedReadings planned(link.session, readings, learnt);
            for (int round = 1; round <= 3; ++round) {
                Listener listener(readings.size());
                planned.readRound(listener);
                planned.explore();
            }
            const double before = link.line.busy();
            Listener listener(readings.size());
            planned.readRound(listener);
            EXPECT_LE(link.line.busy() - before, 1.05 * bestPlan(layout).microseconds) << timing.baud;
        }
    }
}

TEST_F(PlannedReadingsTest, ReadBytesOfBitsAsTheProjectUsesThem)
{
    Layout layout;
    const std::vector<Reading> readings =
        valueReadingsOf({pointAt(QStringLiteral("DI1:u8")), pointAt(QStringLiteral("DI1:bit"))});
    SimulatedLink link(layout.device);
    Learnt learnt;
    PlannedReadings planned(link.session, readings, learnt);
    EXPECT_EQ(planned.unplanned(), std::vector<size_t>{0});
    Listener listener(readings.size());
    ASSERT_TRUE(planned.readRound(listener));
    const int third = SerialLine::valueAt(1, Area::DiscreteInputs, 2) & 1;
    EXPECT_EQ(listener.reported[0].data, QByteArray(1, static_cast<char>(third << 2)));
    EXPECT_EQ(listener.commands, 2);
}

TEST_F(PlannedReadingsTest, SendWhatIsRefusedOnlyOnce)
{
    Layout layout;
    layout.device.holes[{1, Area::HoldingRegisters}] = {0};
    const std::vector<Reading> readings =
        tagReadingsOf({QStringLiteral("HR1"), QStringLiteral("HR2")}, WordItem, ValueForm::Unsigned).readings;
    SimulatedLink link(layout.device);
    Learnt learnt;
    PlannedReadings planned(link.session, readings, learnt);
    Listener listener(readings.size());
    ASSERT_TRUE(planned.readRound(listener));
    EXPECT_EQ(link.line.refusals(), 2);
    EXPECT_EQ(link.line.requests(), 3);
    ASSERT_TRUE(listener.reported[0].failure);
    EXPECT_TRUE(listener.reported[0].failure->text.startsWith(QLatin1String("exception code:0x02")));
    EXPECT_EQ(link.session.channel().retryCount(), Retries);

    Listener later(readings.size());
    planned.readRound(later);
    EXPECT_EQ(link.line.requests(), 4);
    ASSERT_TRUE(later.reported[0].failure);
    EXPECT_EQ(later.reported[0].failure->exception, 2);
    EXPECT_TRUE(later.reported[0].failure->text.startsWith(
        QLatin1String("exception code:0x02 before; not asked again until")))
        << later.reported[0].failure->text.toStdString();
    EXPECT_TRUE(later.reported[0].failure->advice.startsWith(QLatin1String("illegal data address: ")));
    EXPECT_EQ(later.failedCommands, 0);
}

// Replies that come after the time-out are lost, and 125 registers take 339 ms at 9600 baud.
TEST_F(PlannedReadingsTest, AskForNoMoreThanComesInTime)
{
    const Layout layout = denseLayout(1);
    const std::vector<Reading> readings = valueReadingsOf(pointsAt(layout.points));
    SimulatedLink link(layout.device, 300);
    Learnt learnt;
    PlannedReadings planned(link.session, readings, learnt);
    for (int round = 1; round <= 3; ++round) {
        Listener listener(readings.size());
        planned.readRound(listener);
        for (const Reported &reported : listener.reported)
            ASSERT_TRUE(reported.data) << "round " << round;
        EXPECT_TRUE(round == 1 || listener.failedCommands <= 2) << "round " << round;
    }
}

TEST_F(PlannedReadingsTest, EndWhenNobodyWantsMore)
{
    const Layout layout = denseLayout(1);
    const std::vector<Reading> readings = valueReadingsOf(pointsAt(layout.points));
    SimulatedLink link(layout.device);
    Learnt learnt;
    PlannedReadings planned(link.session, readings, learnt);
    Listener listener(readings.size());
    listener.wanted = 3;
    EXPECT_FALSE(planned.readRound(listener));
    EXPECT_EQ(link.line.requests(), 1);

    link.session.channel().setCancelled([] { return true; });
    Listener cancelled(readings.size());
    EXPECT_TRUE(planned.readRound(cancelled));
    EXPECT_EQ(link.line.requests(), 1);
    for (const Reported &reported : cancelled.reported)
        EXPECT_FALSE(reported.failure) << "what nobody waited for has not failed";
}

TEST(TagReadings, AreOfTheTypeThatTheTagSuggests)
{
    const TagReadings tags = tagReadingsOf(
        {"HR1", "5-DI9", "HR4.3", "HRSW30", "HR7:f64", "nonsense", "HR65536", "HR1:u16x2", "FN5DO4"},
        DoubleWordItem, ValueForm::Unsigned);
    QStringList found;
    for (const Reading &reading : tags.readings)
        found += labelOf(reading) + QLatin1Char(' ') + reading.shown.front().point->at.kindName();
    EXPECT_EQ(found,
              (QStringList{"FN5DO4 bit", "HR1 dword", "HR4.3 bit", "HR7 f64", "HRSW30 dword", "5-DI9 bit"}));
    EXPECT_EQ(tags.skipped.size(), 3);
}

TEST(ValueReadings, AreOfOneValueWhereThatCanBeRead)
{
    struct Case {
        const char *text;
        size_t readings;
        const char *first; // where it lies; empty when it is read as it is
    };
    for (const Case &c :
         {Case{"HR1:u16x300", 300, "1-HR1"}, Case{"HR7.14:bitx4", 4, "1-HR7"}, Case{"9-HR1:u8x5", 5, "9-HR1"},
          Case{"DI1:u8x5", 1, ""}, Case{"DO1:bitx9", 9, "1-DO1"}, Case{"HR3:f64x2", 2, "1-HR3..6"}}) {
        const Point point = pointAt(QLatin1String(c.text));
        const std::vector<Reading> readings = valueReadingsOf({point});
        EXPECT_EQ(readings.size(), c.readings) << c.text;
        const std::optional<AreaRange> range = rangeOf(readings.front(), 1);
        EXPECT_EQ(range ? rangeText(*range) : QString(), QLatin1String(c.first)) << c.text;
        QStringList labels;
        for (const Reading &reading : readings) {
            for (const Reading::Shown &shown : reading.shown)
                labels += labelOf(shown);
        }
        ASSERT_EQ(labels.size(), point.at.count) << c.text;
        for (int i = 0; i < point.at.count; ++i)
            EXPECT_EQ(labels.at(i), point.at.label(i)) << c.text;
    }
}
