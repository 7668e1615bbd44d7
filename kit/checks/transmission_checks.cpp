#include "kit/checks/all_checks.h"
#include "kit/checks/good_run.h"

#include "drivers/qt/qt_lines.h"

namespace kit
{

namespace
{

QString text(const char *latin1)
{
    return QLatin1String(latin1);
}

bool readsAfterLastRequest(const Outcome &outcome)
{
    bool reads = false;
    for (const ScriptedChannel::Call &call : outcome.calls) {
        if (call.operation == ScriptedChannel::WriteData)
            reads = false;
        if (call.operation == ScriptedChannel::ReadData)
            reads = true;
    }
    return reads;
}

void checkShortSend(Trial &trial)
{
    forEachExchange(trial, [&trial](DriverLink &link, const GoodRun &run, const Exchange &exchange, int at) {
        for (const int sent : {-1, 0, 1, sizeOf(exchange.request) - 1}) {
            const Outcome outcome = link.runWith(shortSend(at, sent), run.sample);
            if (hasSucceeded(run.sample, outcome))
                trial.report(findingOf(run.sample, outcome, text("a failure: the request was not sent")));
            else if (readsAfterLastRequest(outcome))
                trial.report(findingOf(run.sample, outcome,
                                       text("no wait for the answer to a request that was not sent"),
                                       text("the reply is waited for")));
        }
    });
}

void expectFailure(Trial &trial, DriverLink &link, const GoodRun &run, const Trouble &trouble)
{
    const Outcome outcome = link.runWith(trouble, run.sample);
    if (hasSucceeded(run.sample, outcome))
        trial.report(findingOf(run.sample, outcome, text("a failure after ") + trouble.name));
}

void expectFailureOrData(Trial &trial, DriverLink &link, const GoodRun &run, const Trouble &trouble)
{
    const Outcome outcome = link.runWith(trouble, run.sample);
    if (hasSucceeded(run.sample, outcome) && !hasRightData(link, run, outcome))
        trial.report(
            findingOf(run.sample, outcome, text("a failure, or the right data, after ") + trouble.name));
}

void checkFailedRead(Trial &trial)
{
    forEachExchange(trial, [&trial](DriverLink &link, const GoodRun &run, const Exchange &exchange, int at) {
        for (int part = 0; part < exchange.reads; ++part) {
            for (const int result : {-1, 0})
                expectFailure(trial, link, run, failedRead(at, part, result));
            // More than was asked for: no channel should, and no driver must trust it.
            expectFailureOrData(trial, link, run, failedRead(at, part, 100000));
        }
    });
}

void checkTruncation(Trial &trial)
{
    forEachExchange(trial, [&trial](DriverLink &link, const GoodRun &run, const Exchange &exchange, int at) {
        for (int size = 0; size < exchange.reply.size(); ++size)
            expectFailure(trial, link, run, cutReply(at, size));
        for (int size = 1; size < exchange.reply.size(); ++size)
            expectFailureOrData(trial, link, run, lateReply(at, size));
    });
}

} // namespace

Checks transmissionChecks()
{
    return {
        {"transmission.short-send", "A channel that sends less than it was given has lost its connection.",
         checkShortSend},
        {"transmission.failed-read",
         "What lies in the buffer counts only as far as the channel says that it came.", checkFailedRead},
        {"transmission.truncation", "A reply that ends early must not be taken for a whole one.",
         checkTruncation},
    };
}

} // namespace kit
