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

// As many as the first reply has bytes: none of them can be printed.
QByteArray zerosLike(const GoodRun &run)
{
    return QByteArray(run.exchanges.front().reply.size(), '\0');
}

// Calls \a look with what came of each sample under each trouble.
void forEachFailure(Trial &trial, const std::function<void(const GoodRun &run, const Outcome &outcome)> &look)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    for (const GoodRun &run : goodRuns(trial, link)) {
        Troubles troubles = brokenTransmissions(run);
        troubles.push_back(otherReply(0, text("a reply of zeros"), zerosLike(run)));
        const QByteArray refusal = trial.subject().refusal(run.exchanges.front().request);
        if (!refusal.isEmpty())
            troubles.push_back(otherReply(0, text("a refusal"), refusal));
        for (const Trouble &trouble : troubles)
            look(run, link.runWith(trouble, run.sample));
    }
}

void checkQuietBeginning(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver != nullptr && driver->hasError())
        trial.report(text("a new object has no error"), text("it has one: ") + driver->getLastError());
}

void checkEmptyResult(Trial &trial)
{
    forEachFailure(trial, [&trial](const GoodRun &run, const Outcome &outcome) {
        if (run.sample.isWrite && outcome.isWritten == outcome.hasError)
            trial.report(findingOf(run.sample, outcome, text("write() answers what hasError() does not"),
                                   QString::fromLatin1("write() is %1, hasError() %2")
                                       .arg(text(outcome.isWritten ? "true" : "false"),
                                            text(outcome.hasError ? "true" : "false"))));
        if (!run.sample.isWrite && outcome.hasError && !outcome.data.isEmpty())
            trial.report(
                findingOf(run.sample, outcome, text("a failed read returns no data"), hexText(outcome.data)));
    });
}

// Two letters in a row.
bool hasWord(const QString &said)
{
    for (int i = 0; i + 1 < sizeOf(said); ++i)
        if (said.at(i).isLetter() && said.at(i + 1).isLetter())
            return true;
    return false;
}

// A place of a format that nothing was put into: "%1", "%d".
bool hasEmptyPlace(const QString &said)
{
    for (int i = 0; i + 1 < sizeOf(said); ++i)
        if (said.at(i) == QLatin1Char('%') &&
            (said.at(i + 1).isDigit() || text("dsulxX").contains(said.at(i + 1))))
            return true;
    return false;
}

// Whether people can read it.
bool isInWords(const QString &said)
{
    for (int i = 0; i < sizeOf(said); ++i)
        if (!said.at(i).isPrint())
            return false;
    return hasWord(said) && !hasEmptyPlace(said);
}

void checkText(Trial &trial)
{
    forEachFailure(trial, [&trial](const GoodRun &run, const Outcome &outcome) {
        if (outcome.hasError && !isInWords(outcome.text))
            trial.report(findingOf(run.sample, outcome, text("a text in words for the host's log"),
                                   QLatin1Char('"') + outcome.text + QLatin1Char('"')));
    });
}

void checkCleared(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    for (const GoodRun &run : goodRuns(trial, link)) {
        link.runWith(silence(0), run.sample);
        const Outcome outcome = link.runOnOpenChannel(run.sample);
        const bool isDone = run.sample.isWrite ? outcome.isWritten : !outcome.data.isEmpty();
        if (outcome.hasError && (isDone || requestsOf(outcome) > 0))
            trial.report(findingOf(run.sample, outcome, text("the success clears the error"),
                                   text("hasError() is still true: ") + outcome.text));
    }
}

Outcome runWithFailingOpen(DriverLink &link, const Sample &sample, const QString &reason)
{
    link.reset();
    ScriptedChannel &channel = link.channel();
    channel.connected = false;
    channel.errorText = reason;
    for (int nth = 1; nth <= 8; ++nth)
        channel.fail(ScriptedChannel::Open, nth, 0);
    Outcome outcome = link.run(sample);
    channel.forgetFailures();
    return outcome;
}

void checkLatest(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    for (const GoodRun &run : goodRuns(trial, link)) {
        const QString first = link.runWith(silence(0), run.sample).text;
        runWithFailingOpen(link, run.sample, text("no route to the slave"));
        const Outcome again = link.runWith(silence(0), run.sample);
        if (again.text != first)
            trial.report(findingOf(run.sample, again,
                                   text("the text of the last failure alone, as it was before: ") + first));
    }
}

void checkChannelText(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    const QString reason = text("cable unplugged");
    link.channel().errorTextAfterClose = text("channel is closed");
    for (const GoodRun &run : goodRuns(trial, link)) {
        link.channel().errorText = reason;
        const Outcome broken = link.runWith(shortSend(0, 0), run.sample);
        if (!broken.text.contains(reason))
            trial.report(findingOf(run.sample, broken,
                                   text("after a short send the channel's reason, asked for before it is "
                                        "closed: ") +
                                       reason));
        const Outcome closed = runWithFailingOpen(link, run.sample, reason);
        if (!closed.text.contains(reason))
            trial.report(
                findingOf(run.sample, closed, text("after a failed open the channel's reason: ") + reason));
    }
}

} // namespace

Checks errorChecks()
{
    return {
        {"errors.quiet-beginning", "A host may ask for the error before the first command.",
         checkQuietBeginning},
        {"errors.empty-result",
         "What a host shows hangs on result and error: a failure has no data, and both say the same.",
         checkEmptyResult},
        {"errors.text", "The text goes to the host's log as it is, for people.", checkText},
        {"errors.cleared", "A success clears the error of the command before.", checkCleared},
        {"errors.latest", "The text is that of the last failure, not of all before it.", checkLatest},
        {"errors.channel-text", "Only the channel knows why it does not send or open.", checkChannelText},
    };
}

} // namespace kit
