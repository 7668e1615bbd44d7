// What the window costs the thread that draws, offscreen, and what it keeps:
//   bench_window            the figures with their limits; the exit code is 1 when one is exceeded

#include "apps/driverdesk/panes/points_pane.h"
#include "apps/driverdesk/panes/table.h"
#include "apps/driverdesk/trends/trends_pane.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace
{

const int Points = 10000;
const int RefreshesPerSecond = 5;
const int Seconds = 10;
const int Curves = 4;
const int Redraws = 50;

// Of this thread, in seconds.
double processorTime()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

// Bytes that the process has in memory.
long residentBytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLong() * 4096;
}

void pass(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

std::vector<PointRow> manyRows(int count)
{
    std::vector<PointRow> rows;
    for (int i = 0; i < count; ++i) {
        Point point;
        point.name = QStringLiteral("point %1").arg(i * 7919 % count);
        point.unit = QStringLiteral("bar");
        point.at = *typedItems(*parseAddress(QStringLiteral("HR%1").arg(i + 1)), ValueType());
        rows.push_back({std::make_shared<const Point>(point), 0, 1});
    }
    return rows;
}

SnapshotPointer snapshotOf(int round)
{
    auto snapshot = std::make_shared<Snapshot>();
    snapshot->rounds = round + 1;
    snapshot->interval = 1000 / RefreshesPerSecond;
    snapshot->samples.resize(Points);
    for (int i = 0; i < Points; ++i) {
        PointSample &sample = snapshot->samples[static_cast<size_t>(i)];
        sample.number = (i + round) % 1000;
        sample.text = QStringLiteral("%1 bar").arg(sample.number);
        sample.raw = sample.text;
        sample.readAt = steadyNow();
        sample.round = round;
        sample.latency = 500 + i;
        sample.attempts = 1;
    }
    return snapshot;
}

// The share of a core that 10 000 points take, sorted by name, in a window of 1280 x 800.
double pointsShare()
{
    PointsModel model;
    PointsPane pane(model);
    model.setRows(manyRows(Points));
    pane.table()->sortByColumn(static_cast<int>(PointColumn::Name), Qt::AscendingOrder);
    pane.resize(1280, 800);
    pane.show();
    pass(500);
    QElapsedTimer time;
    time.start();
    double used = 0;
    for (int round = 0; round < Seconds * RefreshesPerSecond; ++round) {
        // A worker makes them in its own thread.
        const SnapshotPointer snapshot = snapshotOf(round);
        const double before = processorTime();
        model.setSnapshot(snapshot, steadyNow());
        pass(static_cast<int>(
            std::max<qint64>(0, qint64(round + 1) * 1000 / RefreshesPerSecond - time.elapsed())));
        used += processorTime() - before;
    }
    return used / (static_cast<double>(time.elapsed()) / 1000);
}

std::vector<TrendSample> hourOfSamples(qint64 begin)
{
    std::vector<TrendSample> samples;
    for (int i = 0; i < static_cast<int>(TrendBook::HourAtTen); ++i) {
        for (int curve = 0; curve < Curves; ++curve) {
            const bool isGap = i % 5000 == 4999;
            samples.push_back(
                {curve, begin + qint64(i) * 100,
                 isGap ? std::numeric_limits<double>::quiet_NaN() : std::sin(i * 0.37 + curve) * curve});
        }
    }
    return samples;
}

struct TrendCosts {
    double slowest = 0; ///< milliseconds of a redraw
    long growth = 0;    ///< bytes in a further hour
};

TrendCosts trendCosts()
{
    TrendBook book;
    TrendsPane pane(book);
    book.setRows(manyRows(Curves));
    for (int curve = 0; curve < Curves; ++curve)
        book.add(curve);
    pane.resize(1280, 800);
    pane.show();
    const qint64 hour = 3600 * 1000;
    const qint64 begin = QDateTime::currentMSecsSinceEpoch() - 2 * hour;
    book.add(hourOfSamples(begin));
    pane.plot()->window().show(static_cast<double>(begin), static_cast<double>(begin + hour));
    TrendCosts costs;
    for (int i = 0; i < Redraws; ++i) {
        QElapsedTimer time;
        time.start();
        pane.plot()->redraw();
        pane.plot()->repaint();
        QApplication::processEvents();
        costs.slowest = std::max(costs.slowest, static_cast<double>(time.nsecsElapsed()) / 1e6);
    }
    const std::vector<TrendSample> further = hourOfSamples(begin + hour);
    const long before = residentBytes();
    book.add(further);
    costs.growth = residentBytes() - before;
    return costs;
}

bool report(const char *what, double value, double limit, const char *unit)
{
    std::printf("%-64s %8.1f %s, at most %.0f\n", what, value, unit, limit);
    return value <= limit;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const double share = pointsShare();
    const TrendCosts trends = trendCosts();
    bool isGood = report("10000 points, 5 a second, sorted by name: of a core", share * 100, 30, "%");
    isGood = report("an hour at 10 samples a second, 4 curves: slowest redraw", trends.slowest, 50, "ms") &&
             isGood;
    isGood = report("a further hour once the history is full: memory grows by",
                    static_cast<double>(trends.growth) / 1024, 256, "KiB") &&
             isGood;
    return isGood ? 0 : 1;
}
