#include "kit/checks/good_run.h"

#include "drivers/qt/qt_lines.h"

namespace kit
{

GoodRuns goodRuns(Trial &trial, DriverLink &link)
{
    GoodRuns runs;
    for (const Sample &sample : trial.subject().samples()) {
        const Outcome outcome = link.runOnOpenChannel(sample);
        if (hasSucceeded(sample, outcome) && requestsOf(outcome) > 0)
            runs.push_back(GoodRun{sample, exchangesOf(outcome.calls)});
    }
    if (runs.empty())
        trial.skip(QLatin1String("no command succeeds: see commands.results"));
    return runs;
}

bool hasRightData(DriverLink &link, const GoodRun &run, const Outcome &outcome)
{
    return link.runOnOpenChannel(run.sample).data == outcome.data;
}

void forEachExchange(
    Trial &trial,
    const std::function<void(DriverLink &link, const GoodRun &run, const Exchange &exchange, int at)> &look)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    for (const GoodRun &run : goodRuns(trial, link))
        for (size_t i = 0; i < run.exchanges.size(); ++i)
            look(link, run, run.exchanges[i], static_cast<int>(i));
}

Troubles brokenTransmissions(const GoodRun &run)
{
    Troubles troubles;
    for (size_t i = 0; i < run.exchanges.size(); ++i) {
        const int at = static_cast<int>(i);
        const int whole = sizeOf(run.exchanges[i].request);
        troubles.push_back(silence(at));
        for (int size = 1; size < run.exchanges[i].reply.size(); ++size)
            troubles.push_back(cutReply(at, size));
        for (const int sent : {-1, 0, whole - 1})
            troubles.push_back(shortSend(at, sent));
    }
    return troubles;
}

} // namespace kit
