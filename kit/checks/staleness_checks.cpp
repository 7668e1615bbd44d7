#include "kit/checks/all_checks.h"
#include "kit/checks/good_run.h"

namespace kit
{

namespace
{

QString text(const char *latin1)
{
    return QLatin1String(latin1);
}

// The run with a reply, in its first exchange, that came for something else.
void expectRefusedReply(Trial &trial, DriverLink &link, const GoodRun &run, const QString &name,
                        const QByteArray &stale)
{
    // A reply that is the very same cannot be told apart.
    bool isSame = false;
    const Trouble trouble = changedReply(0, name, [&isSame, &stale](const QByteArray &reply) {
        isSame = stale.left(reply.size()) == reply;
        return stale;
    });
    const Outcome outcome = link.runWith(trouble, run.sample);
    if (hasSucceeded(run.sample, outcome) && !isSame)
        trial.report(findingOf(run.sample, outcome, text("a failure: this is ") + name));
}

void checkOtherRequest(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    const GoodRuns runs = goodRuns(trial, link);
    for (const GoodRun &run : runs)
        for (const GoodRun &earlier : runs) {
            const Outcome before = link.runOnOpenChannel(earlier.sample);
            const Exchanges exchanges = exchangesOf(before.calls);
            if (!exchanges.empty())
                expectRefusedReply(trial, link, run,
                                   text("the reply to an earlier command: ") + textOf(earlier.sample),
                                   exchanges.front().reply);
        }
}

void checkOtherStation(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    if (!trial.subject().answersEverything()) {
        trial.skip(text("the slave answers recorded requests only"));
        return;
    }
    DriverLink link(*driver, trial.subject());
    const int station = trial.subject().stationId();
    bool isChecked = false;
    for (const GoodRun &run : goodRuns(trial, link)) {
        link.setStation(station + 1);
        const Outcome other = link.runOnOpenChannel(run.sample);
        link.setStation(station);
        const Exchanges exchanges = exchangesOf(other.calls);
        if (run.sample.station >= 0 || exchanges.empty() || exchanges.front().reply.isEmpty())
            continue;
        isChecked = true;
        expectRefusedReply(trial, link, run, text("another station's reply"), exchanges.front().reply);
    }
    if (!isChecked && !trial.isSkipped())
        trial.skip(text("the slave answers for one station only"));
}

void checkEcho(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    for (const GoodRun &run : goodRuns(trial, link))
        expectRefusedReply(trial, link, run, text("the echo of a request"), run.exchanges.front().request);
}

} // namespace

Checks stalenessChecks()
{
    return {
        {"staleness.other-request", "A reply that comes too late meets the next request.", checkOtherRequest},
        {"staleness.other-station", "Many stations share a line, and one may answer for another.",
         checkOtherStation},
        {"staleness.echo", "A two-wire line may give back what was sent.", checkEcho},
    };
}

} // namespace kit
