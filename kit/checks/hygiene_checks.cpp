#include "kit/checks/all_checks.h"
#include "kit/checks/good_run.h"
#include "kit/process/process_size.h"
#include "kit/process/process_state.h"
#include "kit/process/random_sequence.h"

#include <QTemporaryFile>

#include <cstdio>
#include <ctime>
#include <unistd.h>

namespace kit
{

namespace
{

QString text(const char *latin1)
{
    return QLatin1String(latin1);
}

// A day of a driver's life: commands that succeed, that fail, that it refuses.
void runOften(DriverLink &link, const GoodRuns &runs, int commands)
{
    const Trouble silent = silence(0);
    Sample refused = runs.front().sample;
    refused.command.count = -1;
    for (int i = 0; i < commands; ++i) {
        const Sample &sample = runs[static_cast<size_t>(i) % runs.size()].sample;
        if (i % 8 == 3)
            link.runWith(silent, sample);
        else
            link.runOnOpenChannel(i % 64 == 5 ? refused : sample);
    }
}

void runAll(Trial &trial, DriverLink &link)
{
    const GoodRuns runs = goodRuns(trial, link);
    if (!runs.empty())
        runOften(link, runs, 64);
}

void checkMemory(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    const GoodRuns runs = goodRuns(trial, link);
    if (runs.empty())
        return;
    const int commands = trial.settings().commands;
    const qint64 most = 32768;
    runOften(link, runs, commands / 10 + 64);
    const qint64 before = allocatedBytes();
    runOften(link, runs, commands);
    const qint64 grown = allocatedBytes() - before;
    if (grown > most)
        trial.report(QString::fromLatin1("%1 commands leave no memory behind").arg(commands),
                     QString::fromLatin1("%1 bytes are left").arg(grown));
}

void checkFiles(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    const GoodRuns runs = goodRuns(trial, link);
    if (runs.empty())
        return;
    runOften(link, runs, 64);
    const int filesBefore = openFiles();
    const int threadsBefore = threads();
    runOften(link, runs, trial.settings().commands / 10 + 64);
    for (int i = 0; i < 16; ++i) {
        const std::unique_ptr<DriverInterface> another = trial.plugin().create();
        if (!another)
            break;
        DriverLink(*another, trial.subject()).run(runs.front().sample);
    }
    if (openFiles() > filesBefore)
        trial.report(text("commands and objects leave no open files behind"),
                     QString::fromLatin1("%1 more are open").arg(openFiles() - filesBefore));
    if (threads() > threadsBefore)
        trial.report(text("commands and objects leave no threads behind"),
                     QString::fromLatin1("%1 more are running").arg(threads() - threadsBefore));
}

// Takes the standard output of the process while it lives.
class OutputCapture
{
public:
    OutputCapture() : m_before(-1)
    {
        fflush(stdout);
        if (!m_file.open())
            return;
        m_before = dup(STDOUT_FILENO);
        dup2(m_file.handle(), STDOUT_FILENO);
    }
    ~OutputCapture()
    {
        fflush(stdout);
        dup2(m_before, STDOUT_FILENO);
        close(m_before);
    }
    OutputCapture(const OutputCapture &) = delete;
    OutputCapture &operator=(const OutputCapture &) = delete;

    QByteArray taken()
    {
        fflush(stdout);
        m_file.seek(0);
        return m_file.readAll();
    }

private:
    QTemporaryFile m_file;
    int m_before;
};

void checkOutput(Trial &trial)
{
    OutputCapture capture;
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    runAll(trial, link);
    driver->setDebugMode(true);
    runAll(trial, link);
    const QByteArray printed = capture.taken();
    if (!printed.isEmpty())
        trial.report(text("nothing on standard output, which is the host's"),
                     QLatin1Char('"') + QString::fromLocal8Bit(printed.left(200).constData()).trimmed() +
                         QLatin1Char('"'));
}

void checkProcessState(Trial &trial)
{
    const ProcessState before;
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    runAll(trial, link);
    trial.plugin().create();
    const ProcessState after;
    for (const QString &change : before.changesTo(after))
        trial.report(text("what belongs to the process is as it was"), change);
}

void checkRandom(Trial &trial)
{
    const RandomSequences sequences;
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    runAll(trial, link);
    trial.plugin().create();
    const char *const disturbed = sequences.disturbed();
    if (disturbed != nullptr)
        trial.report(text("the host's random sequences go on as the host seeded them"),
                     text("another sequence of ") + text(disturbed));
}

qint64 processorNanoseconds()
{
    timespec time = timespec();
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return qint64(time.tv_sec) * 1000000000 + time.tv_nsec;
}

// The shortest time of several runs that was neither spent on the processor nor on the channel.
qint64 waitedNanoseconds(DriverLink &link, const Sample &sample)
{
    qint64 shortest = -1;
    for (int i = 0; i < 20; ++i) {
        const qint64 before = processorNanoseconds();
        const Outcome outcome = link.runOnOpenChannel(sample);
        qint64 waited = outcome.end - outcome.begin - (processorNanoseconds() - before);
        for (const ScriptedChannel::Call &call : outcome.calls)
            waited -= call.end - call.begin;
        shortest = shortest < 0 ? qMax(waited, qint64(0)) : qMax(qMin(shortest, waited), qint64(0));
    }
    return shortest;
}

void checkTime(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    // What is waited for is a millisecond or more; what is lost on a loaded machine is not lost each time.
    const qint64 most = 500000;
    DriverLink link(*driver, trial.subject());
    for (const GoodRun &run : goodRuns(trial, link)) {
        const qint64 waited = waitedNanoseconds(link, run.sample);
        if (waited >= most)
            trial.report(findingOf(run.sample, link.runOnOpenChannel(run.sample),
                                   text("no wait where the channel answers at once"),
                                   QString::fromLatin1("%1 microseconds are waited").arg(waited / 1000)));
    }
}

} // namespace

Checks hygieneChecks()
{
    return {
        {"hygiene.memory", "A panel runs for years.", checkMemory},
        {"hygiene.files", "A process has only so many open files and threads.", checkFiles},
        {"hygiene.output", "Standard output is the host's, which may print data there.", checkOutput},
        {"hygiene.process-state", "Locale, directory, environment and signal handlers are the host's.",
         checkProcessState},
        {"hygiene.random", "A host seeds its random numbers once and relies on the sequence.", checkRandom},
        {"hygiene.time", "A host polls many tags: a driver waits for its slave and for nothing else.",
         checkTime},
    };
}

} // namespace kit
