#include "apps/driverdesk/demo/demo.h"
#include "apps/driverdesk/slave/moving_slave.h"
#include "tests/peers/raw_master.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

namespace
{

QString cell(const SlaveValuesModel &model, int row, SlaveColumn column)
{
    return model.index(row, static_cast<int>(column)).data().toString();
}

bool edit(SlaveValuesModel &model, int row, SlaveColumn column, const char *text)
{
    return model.setData(model.index(row, static_cast<int>(column)), QLatin1String(text), Qt::EditRole);
}

} // namespace

TEST(Movement, StaysWithinItsLimits)
{
    for (const Movement::Kind kind : {Movement::Ramp, Movement::Sine, Movement::Counter, Movement::Random}) {
        const Movement movement{kind, 10, 20, 1000};
        int low = 100;
        int high = -100;
        for (qint64 time = 0; time < 60000; time += 37) {
            const int value = valueAt(movement, time, 1, 0);
            EXPECT_EQ(value, valueAt(movement, time, 1, 5)) << "the same time, the same value";
            low = std::min(low, value);
            high = std::max(high, value);
        }
        EXPECT_EQ(low, 10) << kind;
        EXPECT_EQ(high, 20) << kind;
    }
    EXPECT_EQ(valueAt({Movement::None, 0, 1, 1}, 12345, 1, 7), 7);
    EXPECT_EQ(valueAt({Movement::Ramp, 0, 100, 0}, 0, 1, 7), 0) << "a period of nothing is one of a moment";
}

TEST(Movement, HasTheShapeOfItsName)
{
    EXPECT_EQ(valueAt({Movement::Ramp, 0, 100, 1000}, 500, 1, 0), 50);
    EXPECT_EQ(valueAt({Movement::Sine, 0, 100, 1000}, 250, 1, 0), 100);
    EXPECT_EQ(valueAt({Movement::Sine, 0, 100, 1000}, 750, 1, 0), 0);
    EXPECT_EQ(valueAt({Movement::Counter, 0, 2, 1000}, 4500, 1, 0), 1);
    const Movement random{Movement::Random, 0, 60000, 10};
    EXPECT_NE(valueAt(random, 100, 1, 0), valueAt(random, 100, 2, 0)) << "another seed";
}

TEST(SlaveValues, AreAddedEditedAndRemoved)
{
    SlaveValuesModel model;
    ASSERT_TRUE(model.addRange(QStringLiteral("HR10..12"), 1));
    ASSERT_TRUE(model.addRange(QStringLiteral("2-DO1"), 1));
    ASSERT_TRUE(model.addRange(QStringLiteral("HR11"), 1));
    EXPECT_EQ(model.rowCount(), 4) << "HR11 was there";
    EXPECT_EQ(cell(model, 3, SlaveColumn::Station), QStringLiteral("2"));
    EXPECT_EQ(cell(model, 3, SlaveColumn::Address), QStringLiteral("DO1"));
    EXPECT_FALSE(model.addRange(QStringLiteral("XY1"), 1));
    EXPECT_FALSE(model.addRange(QStringLiteral("IR1..60000"), 1));
    EXPECT_TRUE(edit(model, 0, SlaveColumn::Value, "-1"));
    EXPECT_EQ(cell(model, 0, SlaveColumn::Value), QStringLiteral("65535"));
    EXPECT_FALSE(edit(model, 0, SlaveColumn::Value, "65536"));
    EXPECT_FALSE(edit(model, 3, SlaveColumn::Value, "2"));
    EXPECT_FALSE(edit(model, 0, SlaveColumn::Movement, "jump"));
    EXPECT_EQ(cell(model, 0, SlaveColumn::Max), QString());
    EXPECT_TRUE(edit(model, 0, SlaveColumn::Movement, "sine"));
    EXPECT_TRUE(edit(model, 0, SlaveColumn::Max, "500"));
    EXPECT_TRUE(edit(model, 0, SlaveColumn::Period, "2.5"));
    EXPECT_FALSE(edit(model, 0, SlaveColumn::Period, "0"));
    EXPECT_EQ(model.values()[0].movement.period, 2500);
    EXPECT_EQ(model.values()[0].movement.max, 500);
    EXPECT_FALSE(edit(model, 0, SlaveColumn::Address, "HR1"));
    model.remove({0, 3});
    EXPECT_EQ(model.rowCount(), 2);
    EXPECT_EQ(cell(model, 0, SlaveColumn::Address), QStringLiteral("HR11"));
}

TEST(FaultSwitches, ShareTheRepliesThatGoWrong)
{
    FaultSwitches switches;
    EXPECT_EQ(switches.plan().next().kind, Fault::None);
    switches.setOn(QStringLiteral("silence"), true);
    switches.setOn(QStringLiteral("reset"), true);
    EXPECT_EQ(switches.namesOn(), (QStringList{"silence", "reset"}));
    FaultPlan always = switches.plan();
    int silences = 0;
    for (int i = 0; i < 1000; ++i) {
        const Fault::Kind kind = always.next().kind;
        EXPECT_TRUE(kind == Fault::Silence || kind == Fault::Reset);
        silences += kind == Fault::Silence ? 1 : 0;
    }
    EXPECT_GT(silences, 400);
    EXPECT_LT(silences, 600);
    switches.setOneOf(10);
    FaultPlan sometimes = switches.plan();
    int faults = 0;
    for (int i = 0; i < 1000; ++i)
        faults += sometimes.next().kind == Fault::None ? 0 : 1;
    EXPECT_GT(faults, 50);
    EXPECT_LT(faults, 150);
    switches.setOn(QStringLiteral("silence"), false);
    EXPECT_EQ(switches.namesOn(), QStringList{QStringLiteral("reset")});
}

TEST(FaultSwitches, CanAllBeOnAtOnce)
{
    FaultSwitches switches;
    for (const QString &name : allFaultNames())
        switches.setOn(name, true);
    FaultPlan plan = switches.plan();
    std::set<Fault::Kind> kinds;
    for (int i = 0; i < 2000; ++i)
        kinds.insert(plan.next().kind);
    EXPECT_EQ(int(kinds.size()), int(allFaultNames().size()));
    EXPECT_EQ(kinds.count(Fault::None), 0U);
}

TEST(MovingSlave, ServesWhatIsShownAndShowsWhatIsWritten)
{
    MovingSlave slave;
    ASSERT_TRUE(slave.values().addRange(QStringLiteral("HR1..3"), 1));
    ASSERT_TRUE(edit(slave.values(), 0, SlaveColumn::Value, "11"));
    ASSERT_TRUE(edit(slave.values(), 1, SlaveColumn::Movement, "ramp"));
    ASSERT_TRUE(edit(slave.values(), 1, SlaveColumn::Max, "1000"));
    ASSERT_TRUE(edit(slave.values(), 1, SlaveColumn::Period, "1"));
    ASSERT_TRUE(slave.start(0, {1}));
    ASSERT_TRUE(edit(slave.values(), 2, SlaveColumn::Value, "33"));
    slave.moveTo(250);
    EXPECT_EQ(cell(slave.values(), 1, SlaveColumn::Value), QStringLiteral("250"));
    RawMaster master(slave.port());
    EXPECT_EQ("010306000B00FA0021", master.ask("010300000003"));
    EXPECT_EQ(slave.counts().requests, 1U);
    slave.stop();
    EXPECT_FALSE(slave.isRunning());
    EXPECT_EQ(slave.counts().requests, 0U);
}

TEST(MovingSlave, SaysWhyItCannotListen)
{
    MovingSlave first;
    ASSERT_TRUE(first.start(0, {1}));
    MovingSlave second;
    const Result<> started = second.start(first.port(), {1});
    ASSERT_FALSE(started);
    EXPECT_TRUE(started.errorText().contains(QString::number(first.port())));
    EXPECT_FALSE(second.isRunning());
}

TEST(Demo, HasAFaultNowAndThenAndMovingValues)
{
    MovingSlave slave;
    furnishDemo(slave, 3);
    EXPECT_TRUE(slave.faults().isAnyOn());
    EXPECT_GT(slave.faults().oneOf(), 10);
    const auto &values = slave.values().values();
    EXPECT_GT(std::count_if(values.begin(), values.end(),
                            [](const SlaveValue &value) { return value.movement.kind != Movement::None; }),
              8);
}
