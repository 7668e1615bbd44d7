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

// Calls \a look with every sample that succeeds.
void forEachRun(Trial &trial, const std::function<void(DriverLink &link, const GoodRun &run)> &look)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    for (const GoodRun &run : goodRuns(trial, link))
        look(link, run);
}

// The first call of the operation; -1 when there is none.
int placeOf(ScriptedChannel::Operation operation, const ScriptedChannel::Calls &calls)
{
    for (size_t i = 0; i < calls.size(); ++i)
        if (calls[i].operation == operation)
            return static_cast<int>(i);
    return -1;
}

void checkOpensClosed(Trial &trial)
{
    forEachRun(trial, [&trial](DriverLink &link, const GoodRun &run) {
        link.reset();
        link.channel().connected = false;
        const Outcome closed = link.run(run.sample);
        const int opened = placeOf(ScriptedChannel::Open, closed.calls);
        if (countOf(ScriptedChannel::Open, closed.calls) != 1 ||
            opened > placeOf(ScriptedChannel::WriteData, closed.calls) || !hasSucceeded(run.sample, closed))
            trial.report(findingOf(run.sample, closed, text("a closed channel is opened once, then used")));
        const Outcome open = link.runOnOpenChannel(run.sample);
        if (countOf(ScriptedChannel::Open, open.calls) + countOf(ScriptedChannel::Close, open.calls) != 0)
            trial.report(findingOf(run.sample, open, text("an open channel stays as it is")));
    });
}

void checkFailedOpen(Trial &trial)
{
    forEachRun(trial, [&trial](DriverLink &link, const GoodRun &run) {
        for (const int retries : {0, 2}) {
            link.reset();
            link.channel().connected = false;
            link.channel().retries = retries;
            for (int nth = 1; nth <= retries + 2; ++nth)
                link.channel().fail(ScriptedChannel::Open, nth, 0);
            const Outcome outcome = link.run(run.sample);
            link.channel().forgetFailures();
            if (hasSucceeded(run.sample, outcome))
                trial.report(findingOf(run.sample, outcome, text("a failure: the channel does not open")));
            if (requestsOf(outcome) + countOf(ScriptedChannel::ReadData, outcome.calls) > 0)
                trial.report(findingOf(run.sample, outcome,
                                       text("a channel that does not open is neither written nor read"),
                                       text("it is: ") + QString::fromStdString(traceOf(outcome.calls))));
        }
    });
}

void checkClosedWhenBroken(Trial &trial)
{
    forEachRun(trial, [&trial](DriverLink &link, const GoodRun &run) {
        for (const Trouble &trouble : brokenTransmissions(run)) {
            const Outcome outcome = link.runWith(trouble, run.sample);
            if (!hasSucceeded(run.sample, outcome) && link.channel().connected)
                trial.report(findingOf(run.sample, outcome,
                                       text("the channel is closed, so that what still comes meets no later "
                                            "request"),
                                       text("it is left open after ") + trouble.name));
        }
    });
}

void checkOpenAfterRefusal(Trial &trial)
{
    bool isChecked = false;
    forEachRun(trial, [&trial, &isChecked](DriverLink &link, const GoodRun &run) {
        const QByteArray refusal = trial.subject().refusal(run.exchanges.front().request);
        if (refusal.isEmpty())
            return;
        isChecked = true;
        const Outcome outcome = link.runWith(otherReply(0, text("a refusal"), refusal), run.sample);
        if (countOf(ScriptedChannel::Close, outcome.calls) > 0)
            trial.report(findingOf(run.sample, outcome,
                                   text("a refusal leaves the channel open: the line is in order"),
                                   text("it is closed")));
    });
    if (!isChecked && !trial.isSkipped())
        trial.skip(text("the slave never refuses"));
}

void checkExactReads(Trial &trial)
{
    forEachRun(trial, [&trial](DriverLink &link, const GoodRun &run) {
        for (const int excess : {0, 1, 8}) {
            const int last = static_cast<int>(run.exchanges.size()) - 1;
            const Trouble longer =
                changedReply(last, text("bytes after the reply"), [excess](const QByteArray &reply) {
                    return reply + QByteArray(excess, '\x55');
                });
            const Outcome outcome = link.runWith(longer, run.sample);
            int asked = 0;
            int given = 0;
            for (const Exchange &exchange : run.exchanges)
                given += sizeOf(exchange.reply);
            for (const ScriptedChannel::Call &call : outcome.calls)
                asked += call.operation == ScriptedChannel::ReadData ? call.length : 0;
            if (asked != given)
                trial.report(findingOf(
                    run.sample, outcome,
                    QString::fromLatin1("reads of just the %1 bytes that the replies have").arg(given),
                    QString::fromLatin1("%1 bytes are asked for").arg(asked)));
        }
    });
}

void checkIdleOperations(Trial &trial)
{
    forEachRun(trial, [&trial](DriverLink &link, const GoodRun &run) {
        for (const Outcome &outcome :
             {link.runOnOpenChannel(run.sample), link.runWith(silence(0), run.sample, 1)})
            if (countOf(ScriptedChannel::Idle, outcome.calls) > 0)
                trial.report(findingOf(
                    run.sample, outcome, text("no operation of the channel but those of the contract"),
                    text("others are called: ") + QString::fromStdString(traceOf(outcome.calls))));
    });
}

} // namespace

Checks channelChecks()
{
    return {
        {"channel.opens-closed", "The host leaves it to the driver to open what is closed, and nothing else.",
         checkOpensClosed},
        {"channel.failed-open", "A channel that did not open has nobody at its other end.", checkFailedOpen},
        {"channel.closed-when-broken",
         "What is left of a broken transmission would be taken for the answer to the next request.",
         checkClosedWhenBroken},
        {"channel.open-after-refusal", "Connecting anew takes time, and a refusal is no fault of the line.",
         checkOpenAfterRefusal},
        {"channel.exact-reads",
         "readData() waits for as many bytes as are asked for, so one too many costs a time-out.",
         checkExactReads},
        {"channel.idle-operations",
         "A panel's own channel has other operations in the places that the contract leaves idle.",
         checkIdleOperations},
    };
}

} // namespace kit
