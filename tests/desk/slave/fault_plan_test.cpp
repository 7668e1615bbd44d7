#include "desk/slave/fault_plan.h"
#include "desk/slave/reply_shape.h"

#include "desk/wire/rtu_frame.h"
#include "tests/peers/raw_master.h"

#include <gtest/gtest.h>

#include <QMap>

#include <ostream>

namespace
{

QList<int> kindsOf(FaultPlan &plan, int replies)
{
    QList<int> kinds;
    for (int i = 0; i < replies; ++i)
        kinds.append(plan.next().kind);
    return kinds;
}

QString refusal(const char *rule)
{
    FaultPlan plan;
    const Result<> added = plan.add(QLatin1String(rule));
    EXPECT_FALSE(added) << rule;
    EXPECT_EQ(Fault::None, plan.next().kind) << rule;
    return added.errorText();
}

TEST(FaultPlan, NoRulesNoFaults)
{
    FaultPlan plan;
    EXPECT_EQ(1000, kindsOf(plan, 1000).count(Fault::None));
}

TEST(FaultPlan, EveryNth)
{
    FaultPlan plan;
    ASSERT_TRUE(plan.add("truncate:4=1/3"));
    for (int i = 1; i <= 30; ++i) {
        const Fault fault = plan.next();
        EXPECT_EQ(i % 3 == 0 ? Fault::Truncate : Fault::None, fault.kind) << i;
        EXPECT_EQ(i % 3 == 0 ? 4 : -1, fault.value) << i;
    }
}

TEST(FaultPlan, SharesComeOutAsAsked)
{
    FaultPlan plan(42);
    ASSERT_TRUE(plan.add("silence=1%"));
    ASSERT_TRUE(plan.add("echo=0.5%"));
    ASSERT_TRUE(plan.add("wrong-crc=20%"));
    QMap<int, int> seen;
    for (const int kind : kindsOf(plan, 200000))
        ++seen[kind];
    EXPECT_NEAR(2000, seen[Fault::Silence], 200);
    EXPECT_NEAR(1000, seen[Fault::Echo], 150);
    EXPECT_NEAR(40000, seen[Fault::WrongCrc], 800);
    EXPECT_EQ(4, seen.size());
}

TEST(FaultPlan, AllRepliesAndNone)
{
    FaultPlan all;
    ASSERT_TRUE(all.add("reset=100%"));
    EXPECT_EQ(1000, kindsOf(all, 1000).count(Fault::Reset));
    FaultPlan none;
    ASSERT_TRUE(none.add("reset=0%"));
    EXPECT_EQ(1000, kindsOf(none, 1000).count(Fault::None));
}

TEST(FaultPlan, TheSeedDecides)
{
    const auto plan = [](quint32 seed) {
        FaultPlan made(seed);
        made.addShare({Fault::Silence, -1}, 50);
        return kindsOf(made, 200);
    };
    EXPECT_EQ(plan(5), plan(5));
    EXPECT_NE(plan(5), plan(6));
}

TEST(FaultPlan, EveryNthGoesBeforeShares)
{
    FaultPlan plan;
    plan.addShare({Fault::Silence, -1}, 100);
    plan.addEvery({Fault::Echo, -1}, 2);
    EXPECT_EQ((QList<int>{Fault::Silence, Fault::Echo, Fault::Silence, Fault::Echo}), kindsOf(plan, 4));
}

TEST(FaultPlan, InjectedFaultsDoNotShiftThePlan)
{
    FaultPlan plan;
    plan.addEvery({Fault::Echo, -1}, 2);
    plan.inject({Fault::Close, -1}, 1);
    EXPECT_EQ((QList<int>{Fault::Close, Fault::None, Fault::Echo}), kindsOf(plan, 3));
}

TEST(FaultPlan, PicksTheWholeRange)
{
    FaultPlan plan;
    QMap<int, int> seen;
    for (int i = 0; i < 400; ++i)
        ++seen[plan.pick(3, 6)];
    EXPECT_EQ((QList<int>{3, 4, 5, 6}), seen.keys());
    EXPECT_EQ(9, plan.pick(9, 9));
}

TEST(FaultPlan, KnowsEveryFaultByName)
{
    EXPECT_EQ(19, allFaultNames().size());
    for (const QString &name : allFaultNames()) {
        FaultPlan plan;
        ASSERT_TRUE(plan.add(name + "=1/1"));
        EXPECT_EQ(name, faultName(plan.next().kind));
    }
    EXPECT_EQ("none", faultName(Fault::None).toStdString());
}

TEST(FaultPlan, RefusesWhatIsNoRule)
{
    for (const char *rule : {"",
                             "silence",
                             "silence=",
                             "silence=1",
                             "silence=%",
                             "silence=-1%",
                             "silence=1/0",
                             "silence=1/",
                             "silence=2/3",
                             "=1%",
                             "Silence=1%",
                             "silence=101%",
                             "truncate:=1%",
                             "truncate:x=1%",
                             "truncate:256=1%",
                             "junk-before:0=1%",
                             "silence:3=1%",
                             "exception:300=1%",
                             "silence=1%,echo=1%",
                             "delay:99999999=1%"})
        EXPECT_FALSE(refusal(rule).isEmpty()) << rule;
    EXPECT_TRUE(refusal("quiet=1%").contains("silence, delay, truncate"));
    EXPECT_EQ("truncate takes 0 to 255", refusal("truncate:256=1%").toStdString());
    EXPECT_EQ("silence takes no value", refusal("silence:1=1%").toStdString());
}

TEST(FaultPlan, RefusesMoreThanAll)
{
    FaultPlan plan;
    EXPECT_TRUE(plan.add("silence=60%"));
    EXPECT_FALSE(plan.add("echo=41%"));
    EXPECT_TRUE(plan.add("echo=40%"));
    EXPECT_EQ(0, kindsOf(plan, 1000).count(Fault::None));
}

TEST(ReplyShape, ForeignStationsAndFunctionsAreNeverTheRightOnes)
{
    FaultPlan plan;
    for (int station = 1; station <= 247; ++station) {
        QByteArray request = frameOf("010300000001");
        request[0] = static_cast<char>(station);
        const QByteArray reply = withCrc(request.left(1) + QByteArray::fromHex("03020000"));
        const ReplyShape shape = shapeReply({Fault::WrongStation, -1}, request, reply, QByteArray(), plan);
        EXPECT_NE(reply.at(0), shape.bytes().at(0));
        EXPECT_NE('\0', shape.bytes().at(0));
        EXPECT_TRUE(hasGoodCrc(shape.bytes()));
    }
    for (const char *text : {"0101", "0102", "0103", "0104", "0105", "0106", "010F", "0110", "0183"}) {
        const QByteArray reply = frameOf(text);
        const ReplyShape shape = shapeReply({Fault::WrongFunction, -1}, reply, reply, QByteArray(), plan);
        EXPECT_NE(reply.at(1) & 0x7F, shape.bytes().at(1)) << text;
        EXPECT_TRUE(hasGoodCrc(shape.bytes()));
    }
}

} // namespace
