#include "desk/live/station_pacing.h"

#include "desk/live/planned_readings.h"
#include "desk/plan/tag_readings.h"
#include "tests/peers/driver_link.h"
#include "tests/peers/test_files.h"
#include "tests/peers/text_printing.h"
#include "tests/simulation/panel/simulated_panel.h"

#include <gtest/gtest.h>

#include <ostream>

// One of ten stations is dead; how the other nine fare, on a clock of its own.

namespace
{

const qint64 Ms = 1000;
const qint64 Second = 1000 * Ms;
const int Stations = 10;
const int Dead = 5;

// What was read of each station, and when.
class Listener : public ReadingListener
{
public:
    explicit Listener(const VirtualTime &clock) : m_clock(clock), m_lastGiven(Stations, 0) {}

    bool add(size_t reading, const QByteArray & /*data*/) override
    {
        if (reading != Dead - 1)
            longestPause = std::max(longestPause, m_clock.now() - m_lastGiven[reading]);
        m_lastGiven[reading] = m_clock.now();
        return true;
    }
    bool addFailure(const std::vector<size_t> & /*readings*/, const Failure & /*failure*/) override
    {
        return true;
    }
    bool addNotAsked(const std::vector<size_t> & /*readings*/, const Failure &failure) override
    {
        told += failure.text;
        return true;
    }
    void addCommand(bool isRead) override { failed += isRead ? 0 : 1; }

    qint64 lastOf(int station) const { return m_lastGiven[static_cast<size_t>(station) - 1]; }

    qint64 longestPause = 0;
    QStringList told;
    int failed = 0;

private:
    const VirtualTime &m_clock;
    std::vector<qint64> m_lastGiven;
};

struct Case {
    const char *name;
    int retries;
    bool answersProbes;
    bool hasAnswered; // before it died
};

void PrintTo(const Case &value, std::ostream *stream)
{
    *stream << value.name;
}

LinkSettings settingsOf(const Case &given)
{
    LinkSettings settings;
    settings.channel.timeout = 300;
    settings.channel.retries = given.retries;
    return settings;
}

std::vector<Reading> readingsOf(int stations)
{
    QStringList tags;
    for (int station = 1; station <= stations; ++station)
        tags += QStringLiteral("%1-HR1").arg(station);
    return tagReadingsOf(tags, WordItem, ValueForm::Unsigned).readings;
}

// Ten stations that take 40 ms for a reply, and who reads them.
struct Plant {
    explicit Plant(const Case &given)
        : panel(pluginFile(), settingsOf(given)),
          readings(readingsOf(Stations)),
          planned(panel.session, readings, learnt),
          listener(panel.time)
    {
        for (int station = 1; station <= Stations; ++station)
            panel.gateway.addStation(station, 40 * Ms, given.answersProbes);
        planned.setPacing(&pacing);
    }
    // How long a round took on average.
    double readUntil(qint64 end)
    {
        const qint64 began = panel.time.now();
        int rounds = 0;
        for (; panel.time.now() < end; ++rounds)
            EXPECT_TRUE(planned.readRound(listener));
        return static_cast<double>(panel.time.now() - began) / rounds;
    }

    SimulatedPanel panel;
    std::vector<Reading> readings;
    Learnt learnt;
    PlannedReadings planned;
    StationPacing pacing;
    Listener listener;
};

} // namespace

class StationPacingTest : public testing::TestWithParam<Case>
{
protected:
    static void SetUpTestSuite() { ASSERT_TRUE(layProjectBesideProgram()); }
};

TEST_P(StationPacingTest, LetsTheOthersGoOn)
{
    const Case &given = GetParam();
    Plant plant(given);
    if (given.hasAnswered)
        plant.readUntil(2 * Second);
    const qint64 died = plant.panel.time.now();
    plant.panel.gateway.setStationOn(Dead, false);
    plant.readUntil(died + 5 * Second);
    plant.listener.longestPause = 0;
    const double nine = (Stations - 1) * 40.0 * Ms;
    const double round = plant.readUntil(died + 60 * Second);
    EXPECT_LE(round, 1.1 * nine);
    EXPECT_LE(static_cast<double>(plant.listener.longestPause), 2.5 * nine);
    EXPECT_EQ(plant.listener.lastOf(Dead) > died, false);

    const qint64 revived = plant.panel.time.now();
    plant.panel.gateway.setStationOn(Dead, true);
    plant.readUntil(revived + 5 * Second);
    EXPECT_GT(plant.listener.lastOf(Dead), revived);
    std::cout << given.name << ": a round takes " << round / nine << " times as long, no pause more than "
              << static_cast<double>(plant.listener.longestPause) / nine << " rounds\n";
    // As before it died.
    EXPECT_NEAR(plant.readUntil(revived + 10 * Second), Stations * 40.0 * Ms, 1.0 * Ms);
}

TEST_P(StationPacingTest, TellsWhenItAsksAgain)
{
    Plant plant(GetParam());
    plant.panel.gateway.setStationOn(Dead, false);
    plant.readUntil(20 * Second);
    EXPECT_TRUE(plant.listener.told.contains("PLC no response before; asked again in 4 s"));
    EXPECT_TRUE(plant.listener.told.contains("PLC no response before; asked again in 1 s"));
    EXPECT_FALSE(plant.listener.told.contains("PLC no response before; asked again in 5 s"));
}

INSTANTIATE_TEST_SUITE_P(All, StationPacingTest,
                         testing::Values(Case{"default retries", 3, true, true},
                                         Case{"no retries", 0, true, true},
                                         Case{"never there", 3, true, false},
                                         Case{"no function 8", 3, false, true},
                                         Case{"no function 8, no retries", 0, false, false}));

TEST(StationPacing, AsksAtGrowingDistances)
{
    StationPacing pacing;
    qint64 now = 0;
    pacing.beginRound(now);
    pacing.noteFailure(7, now);
    pacing.noteFailure(7, now);
    EXPECT_TRUE(pacing.isFailing(7));
    EXPECT_TRUE(pacing.isDue(7, now)) << "one attempt more, of something else";
    for (const qint64 distance : {2000, 4000, 4000}) {
        pacing.noteFailure(7, now);
        EXPECT_FALSE(pacing.isDue(7, now)) << "not twice in a round";
        pacing.beginRound(now + 1);
        EXPECT_EQ(now + distance * Ms, pacing.dueAt(7));
        EXPECT_FALSE(pacing.isDue(7, now + distance * Ms - 2));
        EXPECT_TRUE(pacing.isDue(7, now + distance * Ms));
        now += distance * Ms;
        pacing.beginRound(now);
    }
    pacing.noteAnswer(7);
    EXPECT_FALSE(pacing.isFailing(7));
    EXPECT_EQ(0, pacing.dueAt(7));
    EXPECT_TRUE(pacing.isDue(7, now));
}

TEST(StationPacing, AsksRatherTooSoonThanARoundTooLate)
{
    StationPacing pacing;
    pacing.beginRound(0);
    for (int i = 0; i < 3; ++i)
        pacing.noteFailure(7, 0);
    pacing.beginRound(800 * Ms);
    EXPECT_FALSE(pacing.isDue(7, 800 * Ms));
    pacing.beginRound(1600 * Ms);
    EXPECT_TRUE(pacing.isDue(7, 1600 * Ms));
}
