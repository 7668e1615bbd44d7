#include "kit/checks/all_checks.h"
#include "kit/checks/good_run.h"

#include "drivers/tools/command_data.h"

namespace kit
{

namespace
{

void checkResults(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    for (const Sample &sample : trial.subject().samples()) {
        const Outcome outcome = link.runOnOpenChannel(sample);
        const bool isOtherData = !sample.isWrite && !sample.data.isNull() && outcome.data != sample.data;
        const bool isOtherSize = !sample.isWrite && outcome.data.size() != GetSafeDataLen(sample.command);
        if (!hasSucceeded(sample, outcome))
            trial.report(findingOf(sample, outcome, QLatin1String("success")));
        else if (isOtherData)
            trial.report(findingOf(sample, outcome, hexText(sample.data)));
        else if (isOtherSize)
            trial.report(
                findingOf(sample, outcome,
                          QString::fromLatin1("%1 bytes of data").arg(GetSafeDataLen(sample.command))));
        else if (requestsOf(outcome) == 0)
            trial.report(findingOf(sample, outcome, QLatin1String("a request to the slave"),
                                   QLatin1String("nothing was sent")));
    }
}

void checkBothWays(Trial &trial)
{
    bool reads = false;
    bool writes = false;
    for (const Sample &sample : trial.subject().samples())
        (sample.isWrite ? writes : reads) = true;
    if (!reads)
        trial.report(QLatin1String("a sample that reads"), QLatin1String("none"));
    if (!writes)
        trial.report(QLatin1String("a sample that writes"), QLatin1String("none"));
}

// An object that no command was sent with before, so that numbers in its frames begin where another's began.
class FreshDriver
{
public:
    explicit FreshDriver(Trial &trial) : m_made(trial.plugin().create())
    {
        m_driver = m_made ? m_made.get() : trial.plugin().driver();
    }

    DriverInterface &driver() { return *m_driver; }

private:
    std::unique_ptr<DriverInterface> m_made;
    DriverInterface *m_driver;
};

// The data in memory that ends where they end.
Outcome runWithData(Trial &trial, const Sample &sample, const QByteArray &data)
{
    const std::unique_ptr<char[]> lent(new char[static_cast<size_t>(data.size()) + 1]);
    std::copy(data.constData(), data.constData() + data.size(), lent.get() + 1);
    Sample changed = sample;
    changed.data = QByteArray::fromRawData(lent.get() + 1, data.size());
    FreshDriver fresh(trial);
    Outcome outcome = DriverLink(fresh.driver(), trial.subject()).run(changed);
    return outcome;
}

QList<QByteArray> requestsIn(const Outcome &outcome)
{
    QList<QByteArray> requests;
    for (const ScriptedChannel::Call &call : outcome.calls)
        if (call.operation == ScriptedChannel::WriteData)
            requests.append(call.bytes);
    return requests;
}

void checkDataLength(Trial &trial)
{
    if (trial.driver() == nullptr)
        return;
    bool isChecked = false;
    for (const Sample &sample : trial.subject().samples()) {
        if (!sample.isWrite || sample.data.isEmpty())
            continue;
        isChecked = true;
        for (const QByteArray &data :
             {QByteArray(), sample.data.left(sample.data.size() - 1), sample.data + QByteArray(9, '\x5A')}) {
            Sample changed = sample;
            changed.data = data;
            const Outcome outcome = runWithData(trial, sample, data);
            const Outcome exact = runWithData(trial, sample, ToSafeData(sample.command, data));
            if (requestsIn(outcome) != requestsIn(exact))
                trial.report(findingOf(changed, outcome,
                                       QLatin1String("the request with the data padded with zeros or cut: ") +
                                           hexText(requestsIn(exact).value(0))));
        }
    }
    if (!isChecked)
        trial.skip(QLatin1String("no sample writes"));
}

void checkDebugMode(Trial &trial)
{
    if (trial.driver() == nullptr)
        return;
    FreshDriver quiet(trial);
    FreshDriver talking(trial);
    talking.driver().setDebugMode(true);
    DriverLink quietLink(quiet.driver(), trial.subject());
    DriverLink talkingLink(talking.driver(), trial.subject());
    for (const Sample &sample : trial.subject().samples()) {
        const Outcome expected = quietLink.runOnOpenChannel(sample);
        const Outcome outcome = talkingLink.runOnOpenChannel(sample);
        if (hasSucceeded(sample, outcome) != hasSucceeded(sample, expected) ||
            outcome.data != expected.data || traceOf(outcome.calls) != traceOf(expected.calls))
            trial.report(findingOf(sample, outcome,
                                   QLatin1String("what the same command gives without debug mode: ") +
                                       textOf(sample, expected)));
    }
}

} // namespace

Checks commandChecks()
{
    return {
        {"commands.results", "A command that the driver can do succeeds, with as much data as it says.",
         checkResults},
        {"commands.both-ways", "A driver whose writes nobody tried is half proven.", checkBothWays},
        {"commands.data-length",
         "Data to be written is padded with zeros or cut to the command's length; nothing beyond it is read.",
         checkDataLength},
        {"commands.debug-mode", "Looking for a fault must not change what is looked at.", checkDebugMode},
    };
}

} // namespace kit
