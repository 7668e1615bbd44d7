// Whatever a device has, refuses and limits: a refresh reports what reading one by one would, in every round.

#include "desk/refresh/refresh.h"

#include "tests/lines/layouts.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

namespace
{

struct Behaviour {
    const char *name;
    PlanDevice::Refusing holesAre;
    PlanDevice::Refusing longRangesAre;
    StationOptions options;
};

const Behaviour Behaviours[] = {
    {"as the protocol has it", PlanDevice::AsMissing, PlanDevice::AsTooMany, {}},
    {"holes as exception 3", PlanDevice::AsTooMany, PlanDevice::AsTooMany, {}},
    {"long ranges as exception 2", PlanDevice::AsMissing, PlanDevice::AsMissing, {}},
    {"the two exchanged", PlanDevice::AsTooMany, PlanDevice::AsMissing, {}},
    {"no answer to long ranges", PlanDevice::AsMissing, PlanDevice::BySilence, {}},
    {"without gaps", PlanDevice::AsMissing, PlanDevice::AsTooMany, {false, false}},
    {"one by one", PlanDevice::AsMissing, PlanDevice::AsTooMany, {true, true}},
};

class Rounds
{
public:
    explicit Rounds(const Layout &layout, const StationOptions &options = {})
        : m_learnt(learntWith(options)),
          m_refresh(layout.points, m_learnt),
          client(layout.device, layout.points)
    {
    }

    void read()
    {
        client.beginRound();
        m_refresh.readRound(client, client.now());
    }
    void explore() { m_refresh.explore(client, client.now()); }
    quint64 plansMade() const { return m_refresh.plansMade(); }

private:
    static Learnt learntWith(const StationOptions &options)
    {
        Learnt learnt;
        for (int station = 1; station <= 3; ++station)
            learnt[station].options = options;
        return learnt;
    }

    Learnt m_learnt;
    Refresh m_refresh;

public:
    PlanClient client;
};

Layout withPoints(std::vector<AreaRange> points)
{
    return {std::move(points), {}};
}

AreaRange registers(int first, int last)
{
    return {1, Area::HoldingRegisters, first, last};
}

} // namespace

TEST(RefreshValues, AreThoseOfReadingOneByOneInEveryRound)
{
    for (const Behaviour &behaviour : Behaviours) {
        for (unsigned int seed = 0; seed < 1000; ++seed) {
            Layout layout = randomLayout(seed);
            layout.device.holesAre = behaviour.holesAre;
            layout.device.longRangesAre = behaviour.longRangesAre;
            if (seed % 5 == 0)
                layout.device.unknownFunctions.insert({1, static_cast<Area>(seed / 5 % 4)});
            Rounds rounds(layout, behaviour.options);
            for (int round = 1; round <= 5; ++round) {
                rounds.read();
                ASSERT_EQ(rounds.client.problem(), QString())
                    << behaviour.name << ", seed " << seed << ", round " << round;
                rounds.explore();
            }
        }
    }
}

// A device that answers nothing where it lacks something is found out in time, not at once: each try costs a
// time-out.
TEST(RefreshValues, AreCompleteInTheEndWhereHolesAreSilent)
{
    for (unsigned int seed = 0; seed < 300; ++seed) {
        Layout layout = randomLayout(seed);
        layout.device.holesAre = PlanDevice::BySilence;
        Rounds rounds(layout);
        for (int round = 1; round <= 20; ++round)
            rounds.read();
        EXPECT_EQ(rounds.client.problem(), QString()) << "seed " << seed;
    }
}

TEST(RefreshValues, AskForNothingAgainThatWasRefused)
{
    for (unsigned int seed = 0; seed < 300; ++seed) {
        Layout layout = randomLayout(seed);
        layout.device.timing = fastNetwork();
        Rounds rounds(layout);
        for (int round = 1; round <= 6; ++round) {
            rounds.read();
            rounds.explore();
        }
        const quint64 plans = rounds.plansMade();
        for (int round = 7; round <= 12; ++round) {
            rounds.read();
            EXPECT_EQ(rounds.client.refusals(), 0) << "seed " << seed << ", round " << round;
            rounds.explore();
        }
        EXPECT_EQ(rounds.plansMade(), plans) << "seed " << seed << ": planned again without need";
    }
}

// How much a device gives at once is found out after the rounds, by a few requests each time.
TEST(RefreshValues, AreNotHeldUpByALimitOnceItHasShown)
{
    Layout layout = withPoints({});
    for (int number = 0; number < 600; ++number)
        layout.points.push_back(registers(number, number));
    layout.device.maxRegisters = 37;
    Rounds rounds(layout);
    rounds.read();
    EXPECT_EQ(rounds.client.problem(), QString());
    EXPECT_LE(rounds.client.refusals(), 6);
    for (int round = 2; round <= 4; ++round) {
        rounds.client.beginRound();
        rounds.explore();
        EXPECT_LE(rounds.client.requests(), 4);
        rounds.read();
        EXPECT_EQ(rounds.client.problem(), QString());
        EXPECT_EQ(rounds.client.refusals(), 0) << "round " << round;
    }
    EXPECT_EQ(rounds.client.requests(), 17);
}

// Each request costs a time-out there.
TEST(RefreshValues, AreHardlyExploredWhereADeviceIsSilent)
{
    for (unsigned int seed = 0; seed < 300; ++seed) {
        Layout layout = randomLayout(seed);
        layout.device.longRangesAre = PlanDevice::BySilence;
        layout.device.timing = fastNetwork();
        Rounds rounds(layout);
        int losses = 0;
        for (int round = 1; round <= 10; ++round) {
            rounds.read();
            rounds.client.beginRound();
            rounds.explore();
            losses += rounds.client.refusals();
        }
        EXPECT_LE(losses, 4) << "seed " << seed;
    }
}

TEST(RefreshValues, ComeBackWhenTheDeviceDoes)
{
    Layout layout = withPoints({});
    for (int number = 0; number < 40; ++number)
        layout.points.push_back(registers(number, number));
    Rounds rounds(layout);
    rounds.read();
    for (int number = 0; number < 60; ++number)
        layout.device.holes[{1, Area::HoldingRegisters}].insert(number);
    rounds.read();
    EXPECT_EQ(rounds.client.problem(), QString());
    layout.device.holes.clear();
    rounds.client.wait(5e6);
    rounds.read();
    EXPECT_EQ(rounds.client.problem(), QString());
    rounds.read();
    EXPECT_EQ(rounds.client.requests(), 1);
}

TEST(RefreshValues, OfAHoleThatIsFilledComeRarely)
{
    Layout layout = withPoints({registers(0, 0), registers(5, 5), registers(9, 9)});
    layout.device.holes[{1, Area::HoldingRegisters}] = {5};
    Rounds rounds(layout);
    rounds.read();
    layout.device.holes.clear();
    rounds.read();
    EXPECT_EQ(rounds.client.requests(), 2) << "the hole is not asked for";
    rounds.client.wait(61e6);
    rounds.read();
    EXPECT_EQ(rounds.client.problem(), QString());
    rounds.read();
    EXPECT_EQ(rounds.client.requests(), 1);
}

TEST(RefreshValues, NeedFewRequestsForAHoleBetweenThem)
{
    Layout layout = withPoints({});
    for (int number = 0; number < 100; number += 2)
        layout.points.push_back(registers(number, number));
    layout.device.holes[{1, Area::HoldingRegisters}] = {51};
    Rounds rounds(layout);
    rounds.read();
    EXPECT_EQ(rounds.client.problem(), QString());
    EXPECT_LE(rounds.client.requests(), 9) << "one that is refused, and halving";
    rounds.read();
    EXPECT_EQ(rounds.client.requests(), 2);
}

TEST(RefreshValues, AskADeviceWithoutTheFunctionTwice)
{
    Layout layout = withPoints({});
    for (int number = 0; number < 100; ++number)
        layout.points.push_back(registers(number, number));
    layout.device.unknownFunctions.insert({1, Area::HoldingRegisters});
    Rounds rounds(layout);
    rounds.read();
    EXPECT_EQ(rounds.client.requests(), 2);
    rounds.read();
    EXPECT_EQ(rounds.client.requests(), 0);
    EXPECT_EQ(rounds.client.problem(), QString());
}

TEST(RefreshValues, AreNotThereWhereADeviceHasLostTheFunction)
{
    Layout layout = withPoints({});
    for (int number = 0; number < 20; ++number)
        layout.points.push_back(registers(number, number));
    Rounds rounds(layout);
    rounds.read();
    layout.device.unknownFunctions.insert({1, Area::HoldingRegisters});
    for (int round = 0; round < 3; ++round) {
        rounds.read();
        EXPECT_EQ(rounds.client.problem(), QString());
    }
    layout.device.unknownFunctions.clear();
    rounds.client.wait(3600e6);
    for (int round = 0; round < 3; ++round)
        rounds.read();
    EXPECT_EQ(rounds.client.problem(), QString());
}

// As some devices say of a length that it is their function that they lack.
TEST(RefreshValues, AreThereWhereLongRangesAreRefusedForTheirFunction)
{
    Layout layout = withPoints({});
    for (int number = 0; number < 100; ++number)
        layout.points.push_back(registers(number, number));
    layout.device.maxRegisters = 30;
    layout.device.longRangesAre = PlanDevice::AsUnknown;
    Rounds rounds(layout);
    for (int round = 0; round < 5; ++round) {
        rounds.read();
        EXPECT_EQ(rounds.client.problem(), QString()) << "round " << round;
        rounds.explore();
    }
}

TEST(RefreshValues, AskADeadStationLittleMoreThanItsRanges)
{
    Layout layout = sparseLayout(1);
    layout.device.holesAre = PlanDevice::BySilence;
    for (int number = 0; number < 65536; ++number)
        layout.device.holes[{1, Area::HoldingRegisters}].insert(number);
    Rounds rounds(layout);
    rounds.read();
    const int first = rounds.client.requests();
    rounds.read();
    EXPECT_LE(first - rounds.client.requests(), 20);
    EXPECT_EQ(rounds.client.problem(), QString());
}
