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
const int Rounds = 10;
const double Allowed = 1.5;

class Listener : public ReadingListener
{
public:
    bool add(size_t /*reading*/, const QByteArray & /*data*/) override { return true; }
    bool addFailure(const std::vector<size_t> & /*readings*/, const Failure &failure) override
    {
        ADD_FAILURE() << failure.text.toStdString();
        return true;
    }
    bool addNotAsked(const std::vector<size_t> &readings, const Failure &failure) override
    {
        return addFailure(readings, failure);
    }
    void addCommand(bool /*isRead*/) override {}
};

QStringList tagsOf(const std::vector<AreaRange> &points)
{
    QStringList tags;
    for (const AreaRange &point : points)
        tags += rangeText(point);
    return tags;
}

} // namespace

TEST(RefreshClock, TakesWhatTheBestPlanTakesOnTheLine)
{
    ASSERT_TRUE(layProjectBesideProgram());
    SlaveOptions options;
    options.latencyMs = Latency;
    SlaveThread slave(options);
    ASSERT_TRUE(slave.start()) << slave.errorString().toStdString();
    LinkSettings settings;
    settings.channel = channelTo(slave.port(), 5000);
    Session session(pluginFile(), settings);
    const Layout layout = denseLayout(1);
    const std::vector<Reading> readings =
        tagReadingsOf(tagsOf(layout.points), WordItem, ValueForm::Unsigned).readings;
    Learnt learnt;
    PlannedReadings planned(session, readings, learnt);
    Listener listener;
    qint64 shortest = std::numeric_limits<qint64>::max();
    for (int round = 1; round <= Rounds; ++round) {
        QElapsedTimer clock;
        clock.start();
        ASSERT_TRUE(planned.readRound(listener));
        shortest = round > 3 ? std::min(shortest, clock.elapsed()) : shortest;
        planned.explore();
    }
    // Other programs may hold up a round, but hardly each of them.
    EXPECT_LE(static_cast<double>(shortest), Allowed * bestPlan(layout).requests * Latency);
}
