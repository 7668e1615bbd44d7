#include "kit/checks/all_checks.h"
#include "kit/checks/good_run.h"
#include "kit/process/process_size.h"

#include <climits>

namespace kit
{

namespace
{

QString text(const char *latin1)
{
    return QLatin1String(latin1);
}

Sample withKind(Sample sample, int dataType)
{
    sample.command.dataType = dataType;
    sample.data = sample.isWrite ? sample.data : QByteArray();
    return sample;
}

Sample withCount(Sample sample, int count)
{
    sample.command.count = count;
    return sample;
}

Sample withAddress(Sample sample, const QString &address)
{
    sample.command.address = address;
    return sample;
}

// Kinds that there are none of; those that an eight-bit number takes for others among them.
Samples unknownKinds(const Sample &sample)
{
    Samples commands;
    for (const int kind : {-1, 7, 255, 256 + sample.command.dataType, INT_MAX, INT_MIN})
        commands.push_back(withKind(sample, kind));
    return commands;
}

// Beyond what anything can have; those that a 16-bit number takes for others among them.
Samples absurdCounts(const Sample &sample)
{
    Samples commands;
    for (const int count : {-1, INT_MIN, INT_MAX, 0x40000001, 0x10000000, 65536 + sample.command.count})
        commands.push_back(withCount(sample, count));
    return commands;
}

QString lettersOf(const QString &address)
{
    int size = 0;
    while (size < address.size() && address.at(size).isLetter())
        ++size;
    return address.left(size);
}

// What no address can be.
Samples absurdAddresses(const Sample &sample)
{
    const QString letters = lettersOf(sample.command.address);
    Samples commands;
    for (const QString &address :
         {QString(), text(" "), text("?!"), text("%s%n%d"), QString(QChar(0xE4)), letters + text("-1"),
          letters + text("99999999999999999999"), QString(70000, QLatin1Char('A')),
          QString(70000, QLatin1Char('9')) + QLatin1Char('x')})
        commands.push_back(withAddress(sample, address));
    return commands;
}

void expectRefusal(Trial &trial, const Sample &sample, const Outcome &outcome)
{
    // Whether it throws is the concern of another check.
    const bool succeeds = outcome.thrown.isEmpty() && !outcome.hasError;
    if (succeeds)
        trial.report(findingOf(sample, outcome, text("a refusal")));
    else if (requestsOf(outcome) > 0)
        trial.report(findingOf(sample, outcome, text("nothing is sent for what cannot be done"),
                               text("a request is sent")));
}

// Sends what \a make makes of every sample that succeeds; each must be refused.
void expectRefusals(Trial &trial, Samples (*make)(const Sample &sample))
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    for (const GoodRun &run : goodRuns(trial, link))
        for (const Sample &sample : make(run.sample))
            expectRefusal(trial, sample, link.runOnOpenChannel(sample));
}

void checkKinds(Trial &trial)
{
    expectRefusals(trial, unknownKinds);
}

void checkCounts(Trial &trial)
{
    expectRefusals(trial, absurdCounts);
}

void checkAddresses(Trial &trial)
{
    expectRefusals(trial, absurdAddresses);
}

void checkListed(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    const std::vector<CommunicatorCommand> refused = trial.subject().refused();
    if (refused.empty())
        trial.skip(text("the subject lists no command that the driver refuses"));
    DriverLink link(*driver, trial.subject());
    for (const CommunicatorCommand &command : refused) {
        const Sample read = Sample{command, false, QByteArray(), -1};
        expectRefusal(trial, read, link.runOnOpenChannel(read));
        const Sample write = Sample{command, true, QByteArray(16, '\0'), -1};
        expectRefusal(trial, write, link.runOnOpenChannel(write));
    }
}

Samples allAbsurd(const Sample &sample)
{
    Samples all = unknownKinds(sample);
    for (const Samples &more : {absurdCounts(sample), absurdAddresses(sample)})
        all.insert(all.end(), more.begin(), more.end());
    return all;
}

void checkExceptions(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    for (const GoodRun &run : goodRuns(trial, link))
        for (const Sample &sample : allAbsurd(run.sample)) {
            const Outcome outcome = link.runOnOpenChannel(sample);
            if (!outcome.thrown.isEmpty())
                trial.report(
                    findingOf(sample, outcome, text("an error: nothing throws across the interface")));
        }
}

void checkMemory(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    const qint64 most = 65536; // kilobytes
    DriverLink link(*driver, trial.subject());
    for (const GoodRun &run : goodRuns(trial, link))
        for (const Sample &sample : allAbsurd(run.sample)) {
            const qint64 before = largestProcessSize();
            const Outcome outcome = link.runOnOpenChannel(sample);
            const qint64 grown = largestProcessSize() - before;
            if (grown > most)
                trial.report(findingOf(sample, outcome,
                                       QString::fromLatin1("a refusal with less than %1 MB").arg(most / 1024),
                                       QString::fromLatin1("%1 MB are taken").arg(grown / 1024)));
        }
}

} // namespace

Checks refusalChecks()
{
    return {
        {"refusals.kinds", "A kind of item that there is none of comes from a project of later times.",
         checkKinds},
        {"refusals.counts", "A count comes from a project and may be anything.", checkCounts},
        {"refusals.addresses", "An address text that is none must not reach some other item of the plant.",
         checkAddresses},
        {"refusals.listed", "What the device cannot do is refused before anything is sent.", checkListed},
        {"refusals.exceptions",
         "Host and driver are built by different compilers: nothing is thrown between them.",
         checkExceptions},
        {"refusals.memory", "A panel has little memory, and a count from a project must not take it.",
         checkMemory},
    };
}

} // namespace kit
