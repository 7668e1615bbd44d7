// One of ten stations is dead, by the clock, over TCP.

#include "desk/live/planned_readings.h"
#include "desk/plan/tag_readings.h"
#include "desk/slave/slave_thread.h"
#include "tests/peers/driver_link.h"
#include "tests/peers/test_files.h"
#include "tests/peers/text_printing.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

namespace
{

const int Latency = 45;
const int Timeout = 300;
const int Living = 9;

class Listener : public ReadingListener
{
public:
    explicit Listener(size_t readings) : m_sinceGiven(readings)
    {
        for (QElapsedTimer &clock : m_sinceGiven)
            clock.start();
    }
    bool add(size_t reading, const QByteArray & /*data*/) override
    {
        longestPause = std::max(longestPause, m_sinceGiven[reading].restart());
        return true;
    }
    bool addFailure(const std::vector<size_t> & /*readings*/, const Failure & /*failure*/) override
    {
        return true;
    }
    bool addNotAsked(const std::vector<size_t> & /*readings*/, const Failure & /*failure*/) override
    {
        return true;
    }
    void addCommand(bool /*isRead*/) override {}

    qint64 longestPause = 0;

private:
    std::vector<QElapsedTimer> m_sinceGiven;
};

struct Rounds {
    double time;         // of one, in milliseconds
    qint64 longestPause; // between two values of a station
};

// What the rounds take from \a begin on, in milliseconds.
Rounds readRounds(quint16 port, int stations, qint64 begin, qint64 end)
{
    QStringList tags;
    for (int station = 1; station <= stations; ++station)
        tags += QStringLiteral("%1-HR1").arg(station);
    const std::vector<Reading> readings = tagReadingsOf(tags, WordItem, ValueForm::Unsigned).readings;
    LinkSettings settings;
    settings.channel.port = port;
    settings.channel.timeout = Timeout;
    Session session(pluginFile(), settings);
    Learnt learnt;
    PlannedReadings planned(session, readings, learnt);
    StationPacing pacing;
    planned.setPacing(&pacing);
    Listener listener(readings.size());
    QElapsedTimer clock;
    clock.start();
    qint64 began = 0;
    int rounds = 0;
    while (clock.elapsed() < end) {
        if (rounds == 0 && clock.elapsed() >= begin) {
            began = clock.elapsed();
            listener.longestPause = 0;
        }
        EXPECT_TRUE(planned.readRound(listener));
        rounds += began > 0 ? 1 : 0;
    }
    return {static_cast<double>(clock.elapsed() - began) / rounds, listener.longestPause};
}

} // namespace

TEST(DeadStationClock, HoldsUpNobody)
{
    ASSERT_TRUE(layProjectBesideProgram());
    SlaveOptions options;
    options.latencyMs = Latency;
    options.stations = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    SlaveThread slave(options);
    ASSERT_TRUE(slave.start()) << slave.errorString().toStdString();
    const Rounds alone = readRounds(slave.port(), Living, 1, 2000);
    const Rounds withDead = readRounds(slave.port(), Living + 1, 5000, 15000);
    std::cout << "a round takes " << withDead.time / alone.time << " times as long, no pause more than "
              << static_cast<double>(withDead.longestPause) / alone.time << " rounds\n";
    // On a clock of its own it is 1.1; this machine has other things to do.
    EXPECT_LT(withDead.time, 1.25 * alone.time);
    EXPECT_LT(static_cast<double>(withDead.longestPause), 2.5 * alone.time);
}
