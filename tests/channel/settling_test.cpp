#include "desk/channel/settling.h"

#include "tests/doubles/frames.h"
#include "tests/support/gtest_qt.h"

#include <limits>

namespace
{

const qint64 Ms = 1000;
const int Station = 5;
const qint64 Never = std::numeric_limits<qint64>::max();

ExchangeSettings settingsWith(SettleMode mode, int quietTime = 0)
{
    ExchangeSettings settings;
    settings.timeout = 100;
    settings.settle.mode = mode;
    settings.settle.quietTime = quietTime;
    return settings;
}

QByteArray probeWith(int number)
{
    return fieldsFrame(Station, 8, 0, number);
}

class SettlingTest : public testing::Test
{
protected:
    explicit SettlingTest(const ExchangeSettings &settings = settingsWith(SettleMode::Auto))
        : settling(settings, 0)
    {
    }
    bool isSettledAt(qint64 milliseconds) { return settling.isSettled(Station, milliseconds * Ms); }
    void loseAt(qint64 milliseconds)
    {
        settling.noteRequest(Station);
        settling.noteLoss(Station, milliseconds * Ms);
    }
    void comesAt(qint64 milliseconds, const QByteArray &frame)
    {
        settling.noteFrame(frame, milliseconds * Ms);
    }
    /// Has answered a request before.
    void SetUp() override { settling.noteReply(Station); }
    /// Fails, is asked with probes, is settled by quiet, answers.
    void ignoreProbes()
    {
        loseAt(now);
        EXPECT_TRUE(settling.wantsProbe(Station));
        settling.probe(Station, now * Ms);
        now += 301;
        EXPECT_TRUE(isSettledAt(now));
        settling.noteReply(Station);
    }

    Settling settling;
    qint64 now = 0;
};

class QuietTest : public SettlingTest
{
protected:
    QuietTest() : SettlingTest(settingsWith(SettleMode::Quiet, 250)) {}
};

class EchoTest : public SettlingTest
{
protected:
    EchoTest() : SettlingTest(settingsWith(SettleMode::Echo)) {}
};

class OffTest : public SettlingTest
{
protected:
    OffTest() : SettlingTest(settingsWith(SettleMode::Off)) {}
};

} // namespace

TEST_F(SettlingTest, IsSettledUntilAnExchangeFails)
{
    EXPECT_TRUE(isSettledAt(0));
    settling.noteReply(Station);
    comesAt(0, framed("05 03 02 00 01"));
    EXPECT_TRUE(isSettledAt(0));
    loseAt(10);
    EXPECT_FALSE(isSettledAt(10));
    EXPECT_TRUE(settling.isSettled(6, 10 * Ms)) << "another station";
}

TEST_F(SettlingTest, IsSettledByTheEchoOfAProbe)
{
    loseAt(10);
    EXPECT_EQ(probeWith(1), settling.probe(Station, 10 * Ms));
    EXPECT_FALSE(isSettledAt(20));
    comesAt(20, fieldsFrame(6, 8, 0, 1));
    comesAt(20, probeWith(2));
    comesAt(20, fieldsFrame(Station, 8, 1, 1).left(7));
    EXPECT_FALSE(isSettledAt(20)) << "none of these is the echo";
    comesAt(30, probeWith(1));
    EXPECT_TRUE(isSettledAt(30));
    EXPECT_EQ(Settling::Answers, settling.stations().value(Station).habit);
    EXPECT_EQ(1u, settling.counts().byEcho);
    EXPECT_EQ(1u, settling.counts().probes);
    EXPECT_EQ(20 * Ms, settling.counts().totalTime);
}

TEST_F(SettlingTest, TakesTheEchoOfEveryProbeSinceTheLastRequest)
{
    loseAt(0);
    settling.probe(Station, 0);
    settling.probe(Station, 100 * Ms);
    comesAt(150, probeWith(1));
    EXPECT_TRUE(isSettledAt(150));

    loseAt(300);
    comesAt(310, probeWith(2));
    EXPECT_FALSE(isSettledAt(310)) << "was sent before the request whose reply may still come";
}

TEST_F(SettlingTest, BelievesNothingButEchoesOfAStationThatAnswers)
{
    loseAt(0);
    settling.probe(Station, 0);
    comesAt(10, probeWith(1));
    loseAt(100);
    settling.probe(Station, 100 * Ms);
    EXPECT_FALSE(isSettledAt(3600 * 1000));
    EXPECT_EQ(Never, settling.quietEnd(Station));
    EXPECT_EQ(200 * Ms, settling.worthAskingAt(Station, 200 * Ms));
}

TEST_F(SettlingTest, GivesAnUnknownStationTimeForTheProbe)
{
    loseAt(0);
    EXPECT_FALSE(isSettledAt(10000)) << "quiet alone does not do";
    settling.probe(Station, 10000 * Ms);
    EXPECT_FALSE(isSettledAt(10100));
    EXPECT_TRUE(isSettledAt(10101));
    EXPECT_EQ(1u, settling.counts().byQuiet);
}

TEST_F(SettlingTest, ProbesAStationOnceAfterItsLastAnswer)
{
    loseAt(0);
    settling.probe(Station, 0);
    EXPECT_TRUE(isSettledAt(300));
    loseAt(400);
    EXPECT_FALSE(isSettledAt(699));
    EXPECT_TRUE(isSettledAt(700)) << "it is dead, and has left a probe without an answer";
}

TEST_F(SettlingTest, NeedsNoProbeOfAStationThatHasNeverAnswered)
{
    const int silent = 7;
    settling.noteLoss(silent, 0);
    EXPECT_EQ(300 * Ms, settling.worthAskingAt(silent, 0));
    EXPECT_FALSE(settling.isSettled(silent, 299 * Ms));
    EXPECT_TRUE(settling.isSettled(silent, 300 * Ms));
}

TEST_F(SettlingTest, WaitsForTheQuietTimeAfterEveryFrameOfTheStation)
{
    loseAt(0);
    settling.probe(Station, 0);
    EXPECT_EQ(300 * Ms, settling.quietEnd(Station)) << "three time-outs";
    comesAt(120, framed("05 03 02 00 01"));
    comesAt(200, framed("06 03 02 00 01"));
    EXPECT_FALSE(isSettledAt(419));
    EXPECT_EQ(420 * Ms, settling.worthAskingAt(Station, 300 * Ms));
    EXPECT_TRUE(isSettledAt(420));
    EXPECT_EQ(430 * Ms, settling.worthAskingAt(Station, 430 * Ms));
}

TEST_F(SettlingTest, RemembersAStationThatRefuses)
{
    loseAt(0);
    settling.probe(Station, 0);
    comesAt(10, framed("05 88 04"));
    EXPECT_TRUE(settling.wantsProbe(Station)) << "a failure of the device is no refusal";
    comesAt(10, framed("05 88 01"));
    EXPECT_FALSE(settling.wantsProbe(Station));
    EXPECT_FALSE(isSettledAt(10)) << "no proof: several exceptions look alike";
    EXPECT_TRUE(isSettledAt(300));
    loseAt(400);
    EXPECT_FALSE(settling.wantsProbe(Station));
    EXPECT_TRUE(isSettledAt(700));
}

TEST_F(SettlingTest, RemembersAStationThatIgnoresProbesTwice)
{
    ignoreProbes();
    EXPECT_EQ(Settling::Unknown, settling.stations().value(Station).habit);
    ignoreProbes();
    EXPECT_EQ(Settling::Ignores, settling.stations().value(Station).habit);
    loseAt(now);
    EXPECT_FALSE(settling.wantsProbe(Station));
}

TEST_F(SettlingTest, TakesNoSilentStationForOneThatIgnores)
{
    for (int i = 0; i < 5; ++i) {
        loseAt(now);
        settling.probe(Station, now * Ms);
        now += 300;
        EXPECT_TRUE(isSettledAt(now));
    }
    EXPECT_TRUE(settling.wantsProbe(Station));
}

TEST_F(SettlingTest, TrustsNoEchoOnALineThatEchoes)
{
    settling.setEchoing(true);
    loseAt(0);
    EXPECT_FALSE(settling.wantsProbe(Station));
    settling.probe(Station, 0);
    comesAt(10, probeWith(1));
    EXPECT_FALSE(isSettledAt(10));
    EXPECT_TRUE(isSettledAt(300));
}

TEST_F(SettlingTest, LearnsFromAnEchoThatComesTooLate)
{
    loseAt(0);
    settling.probe(Station, 0);
    EXPECT_TRUE(isSettledAt(300));
    comesAt(310, probeWith(1));
    EXPECT_EQ(Settling::Answers, settling.stations().value(Station).habit);
    loseAt(400);
    EXPECT_FALSE(isSettledAt(3600 * 1000)) << "no quiet is long enough for one that is so late";
}

TEST_F(SettlingTest, NeedsNoMoreMemoryForADeadStation)
{
    loseAt(0);
    for (int i = 0; i < 100000; ++i)
        settling.probe(Station, 0);
    EXPECT_EQ(64, settling.stations().value(Station).probes.size());
}

TEST_F(SettlingTest, TakesNumbersFromAnotherSource)
{
    settling.setNumberSource([] { return quint16(0x1234); });
    EXPECT_EQ(probeWith(0x1234), settling.probe(Station, 0));
}

TEST_F(QuietTest, SendsNoProbes)
{
    loseAt(0);
    EXPECT_FALSE(settling.wantsProbe(Station));
    EXPECT_FALSE(isSettledAt(249));
    EXPECT_TRUE(isSettledAt(250));
}

TEST_F(EchoTest, WaitsForTheEchoForEver)
{
    loseAt(0);
    settling.probe(Station, 0);
    comesAt(10, framed("05 88 01"));
    EXPECT_TRUE(settling.wantsProbe(Station));
    EXPECT_FALSE(isSettledAt(3600 * 1000));
}

TEST_F(OffTest, SettlesNothing)
{
    loseAt(0);
    EXPECT_TRUE(isSettledAt(0));
    EXPECT_TRUE(settling.stations().value(Station).isSettled);
}

TEST(SettlingOfStations, HasRulesForSingleStations)
{
    ExchangeSettings settings = settingsWith(SettleMode::Auto);
    settings.stationSettle[7].mode = SettleMode::Off;
    Settling settling(settings, 0);
    settling.noteLoss(7, 0);
    settling.noteLoss(8, 0);
    EXPECT_TRUE(settling.isSettled(7, 0));
    EXPECT_FALSE(settling.isSettled(8, 0));
}
