#include "desk/doctor/examinations/examination.h"
#include "desk/doctor/observing/evidence.h"

#include <algorithm>
#include <array>

// Why some requests are not answered: since they came too early, or for no reason that shows.

namespace
{

const qint64 Millisecond = 1000;
const std::array<qint64, 10> Pauses = {20, 50, 100, 150, 250, 400, 600, 900, 1400, 2000};
const qint64 Prompt = 10 * Millisecond;
const int Proofs = 3;
const int PromptProofs = 5;

bool isSilent(const Asked &asked)
{
    return asked.result == AskResult::Silent;
}

// A silent sample that came right after a reply.
std::vector<const Asked *> missed(const Observations &seen)
{
    std::vector<const Asked *> found;
    for (const Asked *one : seen.askedFor(Purpose::Sample)) {
        if (isSilent(*one))
            found.push_back(one);
    }
    return found;
}

// Whether a sample was answered that came right after a reply: then no pause is needed.
bool hasPromptAnswer(const Observations &seen)
{
    const std::vector<const Asked *> samples = seen.askedFor(Purpose::Sample);
    return std::any_of(samples.begin(), samples.end(),
                       [](const Asked *one) { return one->isAnswer() && one->rest < Prompt; });
}

class PauseSearch
{
public:
    PauseSearch(Examiner &examiner, QByteArray request) : m_examiner(examiner), m_request(std::move(request))
    {
    }

    // The shortest of the pauses that is enough; 0 when none is.
    qint64 shortest()
    {
        size_t low = 0;
        size_t high = Pauses.size();
        while (low < high && hasTime()) {
            const size_t middle = (low + high) / 2;
            if (isEnough(Pauses[middle] * Millisecond))
                high = middle;
            else
                low = middle + 1;
        }
        return high < Pauses.size() ? Pauses[high] * Millisecond : 0;
    }

    // What happens without a pause, as often as it takes to tell.
    void prompt()
    {
        m_wasSilent = true;
        for (int i = 0; i < PromptProofs && m_wasSilent && hasTime(); ++i) {
            warmUp();
            m_wasSilent = isSilent(m_examiner.ask(Purpose::Prompt, m_request, m_examiner.usualWait()));
        }
    }

private:
    bool hasTime() { return m_examiner.hasTimeFor(2 * m_examiner.usualWait()); }

    // A pause only counts after a reply.
    void warmUp()
    {
        if (m_wasSilent)
            m_examiner.ask(Purpose::Paused, m_request, m_examiner.usualWait(), Pauses.back() * Millisecond);
        m_wasSilent = false;
    }

    bool isEnough(qint64 pause)
    {
        warmUp();
        for (int i = 0; i < Proofs; ++i) {
            m_wasSilent = isSilent(m_examiner.ask(Purpose::Paused, m_request, m_examiner.usualWait(), pause));
            if (m_wasSilent)
                return false;
        }
        return true;
    }

    Examiner &m_examiner;
    QByteArray m_request;
    bool m_wasSilent = true;
};

void observe(Examiner &examiner)
{
    const std::vector<const Asked *> silent = missed(examiner.seen());
    if (silent.empty() || hasPromptAnswer(examiner.seen()) || examiner.isCancelled())
        return;
    examiner.showProgress(QStringLiteral("asking after pauses"));
    PauseSearch search(examiner, silent.back()->request);
    search.prompt();
    const std::vector<const Asked *> prompt = examiner.seen().askedFor(Purpose::Prompt);
    const bool isIgnored = !prompt.empty() && std::all_of(prompt.begin(), prompt.end(),
                                                          [](const Asked *one) { return isSilent(*one); });
    const qint64 pause = isIgnored ? search.shortest() : 0;
    if (pause > 0)
        examiner.seen().pauseNeeded = pause * 3 / 2;
}

QStringList evidenceAfterPause(const Observations &seen)
{
    for (const Asked *one : seen.askedFor(Purpose::Paused)) {
        if (one->isAnswer())
            return QStringList(eventText(
                       one->sentAt, QStringLiteral("after a pause of %1").arg(durationText(one->rest)))) +
                   evidenceOf(*one);
    }
    return {};
}

Judgement judge(const Observations &seen, const DoctorOptions &options)
{
    Judgement judgement;
    const std::vector<const Asked *> silent = missed(seen);
    const size_t samples = seen.askedFor(Purpose::Sample).size();
    if (silent.empty())
        return judgement;
    if (seen.pauseNeeded > 0) {
        judgement.remedy.delay = roundedUp(seen.pauseNeeded, 10);
        judgement.add(FindingKind::NeedsPause,
                      QStringLiteral("station %1 answers only after a pause of about %2")
                          .arg(QString::number(seen.working), durationText(seen.pauseNeeded * 2 / 3)),
                      evidenceOf(silent, 1) + evidenceAfterPause(seen),
                      QStringLiteral("Here: --delay %1.").arg(*judgement.remedy.delay));
        return judgement;
    }
    const double rate = static_cast<double>(silent.size()) / static_cast<double>(samples);
    const int retries = retriesFor(rate);
    if (retries > options.exchange.retries)
        judgement.remedy.retries = retries;
    judgement.add(FindingKind::LostReplies,
                  QStringLiteral("%1 of %2 requests are not answered").arg(silent.size()).arg(samples),
                  evidenceOf(silent));
    return judgement;
}

} // namespace

Examination pauseExamination()
{
    return {"asking after pauses", observe, judge};
}
