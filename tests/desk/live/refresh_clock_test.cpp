// A refresh by the clock, over TCP: requests that go one after the other without a pause between them.

#include "desk/live/planned_readings.h"

#include "desk/plan/tag_readings.h"
#include "desk/slave/slave_thread.h"
#include "tests/lines/best_plan.h"
#include "tests/peers/driver_link.h"
#include "tests/peers/test_files.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace
{

const int Latency = 10; // of the slave, in milliseconds
const int LearningRounds = 3;
const int TimedRounds = 4;
const double Allowed = 1.5;

class Listener : public ReadingListener
{
public:
    bool add(size_t /*reading*/, const QByteArray & /*data*/) override
    {
        ++count;
        return true;
    }
    bool addFailure(const std::vector<size_t> &readings, const Failure &failure) override
    {
        EXPECT_EQ(failure.kind, FailureKind::Exception) << failure.text.toStdString();
        count += readings.size();
        return true;
    }
    bool addNotAsked(const std::vector<size_t> &readings, const Failure &failure) override
    {
        return addFailure(readings, failure);
    }
    void addCommand(bool /*isRead*/) override {}

    size_t count = 0; // of what was reported
};

QStringList tagsOf(const std::vector<AreaRange> &points)
{
    QStringList tags;
    for (const AreaRange &point : points) {
        const AreaRange first{point.station, point.area, point.first, point.first};
        tags += rangeText(first) + (point.last > point.first ? QStringLiteral(":u32") : QString());
    }
    return tags;
}

SlaveOptions slaveFor(const Layout &layout)
{
    SlaveOptions options;
    options.latencyMs = Latency;
    for (const auto &[place, holes] : layout.device.holes) {
        for (const int hole : holes)
            options.memory.addHole({place.first, place.second, hole, hole});
    }
    return options;
}

// On a line where a register costs as good as nothing.
int fewestRequests(Layout layout)
{
    layout.device.timing = fastNetwork();
    return bestPlan(layout).requests;
}

// The shortest, in milliseconds: other programs may hold up a refresh, but hardly each of them.
qint64 learntTime(const Layout &layout)
{
    SlaveThread slave(slaveFor(layout));
    EXPECT_TRUE(slave.start()) << slave.errorString().toStdString();
    LinkSettings settings;
    settings.channel = channelTo(slave.port(), 5000);
    Session session(pluginFile(), settings);
    const std::vector<Reading> readings =
        tagReadingsOf(tagsOf(layout.points), WordItem, ValueForm::Unsigned).readings;
    EXPECT_EQ(readings.size(), layout.points.size());
    Learnt learnt;
    PlannedReadings planned(session, readings, learnt);
    Listener listener;
    qint64 shortest = std::numeric_limits<qint64>::max();
    for (int round = 1; round <= LearningRounds + TimedRounds; ++round) {
        listener.count = 0;
        QElapsedTimer clock;
        clock.start();
        planned.readRound(listener);
        shortest = round > LearningRounds ? std::min(shortest, clock.elapsed()) : shortest;
        EXPECT_EQ(listener.count, readings.size());
        planned.explore();
    }
    return shortest;
}

} // namespace

TEST(RefreshClock, TakesWhatTheBestPlanTakesOnTheLine)
{
    ASSERT_TRUE(layProjectBesideProgram());
    for (const auto make : {denseLayout, scatteredLayout, mixedLayout}) {
        const Layout layout = make(1);
        EXPECT_LE(static_cast<double>(learntTime(layout)), Allowed * fewestRequests(layout) * Latency);
    }
}
