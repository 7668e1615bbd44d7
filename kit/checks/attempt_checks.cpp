#include "kit/checks/all_checks.h"
#include "kit/checks/good_run.h"

#include "drivers/qt/qt_lines.h"

namespace kit
{

namespace
{

const qint64 Millisecond = 1000000;

QString text(const char *latin1)
{
    return QLatin1String(latin1);
}

// Troubles that every driver tries again, all in the first exchange: each request is an attempt.
Troubles repeated(const GoodRun &run)
{
    Troubles troubles = {silence(0), shortSend(0, 0)};
    if (run.exchanges.front().reply.size() > 1)
        troubles.push_back(cutReply(0, sizeOf(run.exchanges.front().reply) / 2));
    return troubles;
}

void expectAttempts(Trial &trial, const GoodRun &run, const Outcome &outcome, int expected)
{
    if (requestsOf(outcome) != expected)
        trial.report(findingOf(run.sample, outcome, QString::fromLatin1("%1 attempts").arg(expected),
                               QString::fromLatin1("%1 attempts").arg(requestsOf(outcome))));
}

void checkCount(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    for (const GoodRun &run : goodRuns(trial, link))
        for (const Trouble &trouble : repeated(run))
            for (int retries = -1; retries <= 3; ++retries)
                expectAttempts(trial, run, link.runWith(trouble, run.sample, retries), qMax(retries, 0) + 1);
}

void checkRefusal(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    bool isChecked = false;
    for (const GoodRun &run : goodRuns(trial, link)) {
        const QByteArray refusal = trial.subject().refusal(run.exchanges.front().request);
        if (refusal.isEmpty())
            continue;
        isChecked = true;
        for (int retries = 0; retries <= 2; ++retries) {
            const int attempts = requestsOf(link.runWith(silence(0), run.sample, retries));
            const Outcome outcome =
                link.runWith(otherReply(0, text("a refusal"), refusal), run.sample, retries);
            if (hasSucceeded(run.sample, outcome))
                trial.report(findingOf(run.sample, outcome, text("a refusal is a failure")));
            else
                expectAttempts(trial, run, outcome, attempts);
        }
    }
    if (!isChecked && !trial.isSkipped())
        trial.skip(text("the slave never refuses"));
}

// Troubles that end after some attempts, at any exchange.
void checkUntilSuccess(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    for (const GoodRun &run : goodRuns(trial, link))
        for (const Trouble &trouble : brokenTransmissions(run))
            for (int failing = 1; failing <= 2; ++failing) {
                const Outcome outcome = link.runWith(trouble, run.sample, failing + 1, failing);
                const int requests =
                    failing * (trouble.exchange + 1) + static_cast<int>(run.exchanges.size());
                if (!hasSucceeded(run.sample, outcome))
                    trial.report(findingOf(run.sample, outcome, text("success once the trouble is over")));
                else if (requestsOf(outcome) > requests)
                    trial.report(findingOf(run.sample, outcome,
                                           text("no attempt after the one that succeeds"),
                                           QString::fromLatin1("%1 requests instead of %2")
                                               .arg(requestsOf(outcome))
                                               .arg(requests)));
            }
}

// How long nothing was done before each request, since the call before it that took time on the channel.
std::vector<qint64> pausesBeforeRequests(const Outcome &outcome)
{
    std::vector<qint64> pauses;
    qint64 since = outcome.begin;
    qint64 onChannel = 0;
    for (const ScriptedChannel::Call &call : outcome.calls) {
        if (call.operation == ScriptedChannel::WriteData) {
            pauses.push_back(call.begin - since - onChannel);
            since = call.end;
            onChannel = 0;
        } else {
            onChannel += call.end - call.begin;
        }
    }
    return pauses;
}

void checkDelay(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    for (const GoodRun &run : goodRuns(trial, link))
        for (const unsigned int delay : {1u, 40u, 1000u}) {
            const Trouble silent = silence(0);
            link.setDelay(delay);
            const Outcome outcome = link.runWith(silent, run.sample, 2);
            link.setDelay(0);
            for (const qint64 pause : pausesBeforeRequests(outcome))
                if (pause < qint64(delay) * Millisecond)
                    trial.report(
                        findingOf(run.sample, outcome,
                                  QString::fromLatin1("a pause of %1 ms before every attempt").arg(delay),
                                  QString::fromLatin1("one of %1 ms")
                                      .arg(static_cast<double>(pause) / static_cast<double>(Millisecond))));
        }
}

// What docs promise a host of one request: (retries + 1) x (delay + connecting + time-outs of two reads).
void checkTime(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    const qint64 slack = qint64(2000) * Millisecond; // what a slow machine takes for all the rest
    const unsigned int delay = 100;
    DriverLink link(*driver, trial.subject());
    const qint64 attempt = qint64(delay) + link.channel().connectTime + qint64(2) * link.channel().timeout;
    for (const GoodRun &run : goodRuns(trial, link))
        for (const Trouble &trouble : brokenTransmissions(run)) {
            if (trouble.exchange > 0)
                continue;
            link.setDelay(delay);
            const Outcome outcome = link.runWith(trouble, run.sample, 2);
            link.setDelay(0);
            const qint64 longest = attempt * requestsOf(outcome) * Millisecond;
            if (outcome.end - outcome.begin > longest + slack)
                trial.report(findingOf(
                    run.sample, outcome,
                    QString::fromLatin1("an end after %1 ms: each attempt takes at most its delay, its "
                                        "connection and two time-outs")
                        .arg(longest / Millisecond),
                    QString::fromLatin1("%1 ms with %2")
                        .arg((outcome.end - outcome.begin) / Millisecond)
                        .arg(trouble.name)));
        }
}

} // namespace

Checks attemptChecks()
{
    return {
        {"attempts.count", "The channel says how often a command is tried again.", checkCount},
        {"attempts.refusal",
         "A slave that refuses may be busy, so its refusal is tried again like any failure.", checkRefusal},
        {"attempts.until-success",
         "What went wrong once goes well when it is tried again, on a fresh connection.", checkUntilSuccess},
        {"attempts.delay", "Slow slaves need their pause before every attempt, the first included.",
         checkDelay},
        {"attempts.time", "A host has to know how long a command blocks it at most.", checkTime},
    };
}

} // namespace kit
