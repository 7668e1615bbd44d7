#include "kit/checks/all_checks.h"
#include "kit/checks/good_run.h"

#include "kit/subject/transcript_subject.h"

namespace kit
{

namespace
{

// Answers the nth request of a command with its nth recorded reply, whatever the request is.
class Playback : public TranscriptSubject
{
public:
    explicit Playback(const Transcript &transcript)
        : TranscriptSubject(transcript), m_recording(nullptr), m_next(0)
    {
    }

    void play(const Recording &recording)
    {
        m_recording = &recording;
        m_next = 0;
    }

    QByteArray reply(const QByteArray & /*request*/) override
    {
        if (m_recording == nullptr || m_next >= m_recording->exchanges.size())
            return QByteArray();
        return m_recording->exchanges[m_next++].reply;
    }

private:
    const Recording *m_recording;
    size_t m_next;
};

// The first request that is not as recorded; -1 when all are.
int firstOtherRequest(const Recording &recording, const Exchanges &exchanges)
{
    const size_t count = qMax(recording.exchanges.size(), exchanges.size());
    for (size_t i = 0; i < count; ++i)
        if (i >= recording.exchanges.size() || i >= exchanges.size() ||
            recording.exchanges[i].request != exchanges[i].request)
            return static_cast<int>(i);
    return -1;
}

QString requestText(const Recording &recording, int number)
{
    const auto i = static_cast<size_t>(number);
    return QString::fromLatin1("request %1 to be ").arg(number + 1) +
           (i < recording.exchanges.size() ? hexText(recording.exchanges[i].request)
                                           : QString(QLatin1String("nothing")));
}

void compare(Trial &trial, const Recording &recording, const Outcome &outcome)
{
    const Sample &sample = recording.sample;
    const int other = firstOtherRequest(recording, exchangesOf(outcome.calls));
    if (other >= 0)
        trial.report(findingOf(sample, outcome, requestText(recording, other)));
    else if (hasSucceeded(sample, outcome) == recording.hasFailed)
        trial.report(findingOf(sample, outcome,
                               recording.hasFailed ? QLatin1String("the failure: ") + recording.text
                                                   : QString(QLatin1String("success"))));
    else if (recording.hasFailed && !recording.text.isEmpty() && outcome.text.simplified() != recording.text)
        trial.report(findingOf(sample, outcome, QLatin1String("the failure: ") + recording.text));
    else if (!recording.hasFailed && !sample.isWrite && outcome.data != sample.data)
        trial.report(findingOf(sample, outcome, hexText(sample.data)));
}

void checkBytes(Trial &trial)
{
    const Transcript *const transcript = trial.settings().transcript;
    if (transcript == nullptr) {
        trial.skip(QLatin1String("there is no transcript"));
        return;
    }
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    Playback playback(*transcript);
    DriverLink link(*driver, playback);
    for (const Recording &recording : transcript->recordings) {
        link.reset();
        link.channel().retries = transcript->retries;
        playback.play(recording);
        compare(trial, recording, link.run(recording.sample));
    }
}

} // namespace

Checks transcriptChecks()
{
    return {
        {"transcripts.bytes",
         "What devices in the field understand today must leave the driver as it does today.", checkBytes},
    };
}

} // namespace kit
