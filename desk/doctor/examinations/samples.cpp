#include "desk/doctor/examinations/examination.h"
#include "desk/doctor/observing/evidence.h"
#include "desk/wire/rtu_frame.h"

#include <algorithm>
#include <cmath>

// How long the station takes for a reply, and how its replies arrive.

namespace
{

const qint64 Second = 1000000;
const qint64 Millisecond = 1000;
const int MostSamples = 40;
const int MostTries = 6;
const qint64 LongestSampling = 12 * Second;
// More registers show better where a reply is damaged.
const int SampleItems = 8;
// No serial line makes such a pause within a frame, and no network in order.
const qint64 LongestGap = 50 * Millisecond;

QByteArray sampleRequest(Examiner &examiner)
{
    const Asked *first = examiner.seen().firstRead();
    if (first == nullptr)
        return {};
    QByteArray longer = readRequest(first->station(), areaOfFunction(first->function()),
                                    wordAt(first->request, 2), SampleItems);
    QByteArray shorter = first->request;
    for (int quiet = 0, tries = 0;
         quiet < 2 && tries < MostTries && examiner.hasTimeFor(examiner.usualWait()); ++tries) {
        const Asked asked = examiner.ask(Purpose::Sample, longer, examiner.patientWait());
        if (asked.result == AskResult::Answered)
            return longer;
        if (asked.result == AskResult::Refused)
            break;
        quiet += examiner.seen().isSpoilt(asked) ? 0 : 1;
    }
    return shorter;
}

// Refusals take as long as other replies, and of a station that works something is known.
QByteArray anyRequest(const Observations &seen)
{
    return std::find_if(seen.asked.begin(), seen.asked.end(),
                        [&](const Asked &one) { return one.station() == seen.working && one.isAnswer(); })
        ->request;
}

void observe(Examiner &examiner)
{
    if (examiner.seen().working < 0)
        return;
    QByteArray request = sampleRequest(examiner);
    if (request.isEmpty())
        request = anyRequest(examiner.seen());
    const qint64 end = examiner.now() + LongestSampling;
    int silent = 0;
    for (int i = 0; i < MostSamples && silent < 2 && examiner.now() < end; ++i) {
        if (!examiner.hasTimeFor(examiner.usualWait()))
            return;
        examiner.showProgress(QStringLiteral("reading, %1 of %2").arg(i + 1).arg(MostSamples));
        const Asked asked = examiner.ask(Purpose::Sample, request, examiner.patientWait());
        silent += asked.result == AskResult::Silent ? 1 : 0;
    }
}

struct Distribution {
    qint64 shortest = 0;
    qint64 median = 0;
    qint64 longest = 0;
    qint64 almostAll = 0; ///< 99.9 %
};

// Of so few samples the tail is not seen: it is taken from the spread, and is never shorter than the longest.
Distribution distributionOf(std::vector<qint64> latencies)
{
    std::sort(latencies.begin(), latencies.end());
    const auto count = static_cast<double>(latencies.size());
    double sum = 0;
    double squares = 0;
    for (const qint64 latency : latencies) {
        sum += static_cast<double>(latency);
        squares += static_cast<double>(latency) * static_cast<double>(latency);
    }
    const double mean = sum / count;
    const double spread = std::sqrt(std::max(0.0, squares / count - mean * mean));
    const double deviationsOfAlmostAll = 3.09;
    const auto tail = static_cast<qint64>(mean + deviationsOfAlmostAll * spread);
    return {latencies.front(), latencies[latencies.size() / 2], latencies.back(),
            std::max(latencies.back(), tail)};
}

QString textOf(const Distribution &times, size_t count)
{
    return QStringLiteral("%1 replies took %2 to %3, half of them at most %4; 99.9 % within %5")
        .arg(QString::number(count), durationText(times.shortest), durationText(times.longest),
             durationText(times.median), durationText(times.almostAll));
}

void judgeTimes(const std::vector<const Asked *> &timed, const DoctorOptions &options, Judgement &judgement)
{
    std::vector<qint64> latencies;
    std::vector<const Asked *> slow;
    const qint64 timeout = options.exchange.timeout * Millisecond;
    for (const Asked *one : timed) {
        latencies.push_back(one->latency());
        if (one->latency() > timeout)
            slow.push_back(one);
    }
    if (latencies.empty())
        return;
    const Distribution times = distributionOf(latencies);
    judgement.add(FindingKind::Timing, textOf(times, latencies.size()), {});
    if (times.almostAll <= timeout)
        return;
    const int needed = roundedUp(times.almostAll * 3 / 2, 100);
    judgement.remedy.timeout = needed;
    judgement.add(FindingKind::LateAnswers,
                  QStringLiteral("replies take up to %1, and the time-out is %2 ms")
                      .arg(durationText(times.longest))
                      .arg(options.exchange.timeout),
                  QStringList(textOf(times, latencies.size())) + evidenceOf(slow),
                  QStringLiteral("Here: --timeout %1.").arg(needed));
}

void judgeGaps(const std::vector<const Asked *> &timed, Judgement &judgement)
{
    std::vector<const Asked *> torn;
    qint64 longest = 0;
    for (const Asked *one : timed) {
        if (one->longestGap > LongestGap) {
            torn.push_back(one);
            longest = std::max(longest, one->longestGap);
        }
    }
    if (torn.size() > 1)
        judgement.add(
            FindingKind::Gaps,
            QStringLiteral("%1 of %2 replies come in parts, up to %3 apart")
                .arg(QString::number(torn.size()), QString::number(timed.size()), durationText(longest)),
            evidenceOf(torn));
}

Judgement judge(const Observations &seen, const DoctorOptions &options)
{
    Judgement judgement;
    const std::vector<const Asked *> timed = seen.timed();
    judgeTimes(timed, options, judgement);
    judgeGaps(timed, judgement);
    return judgement;
}

} // namespace

Examination sampleExamination()
{
    return {"reading", observe, judge};
}
