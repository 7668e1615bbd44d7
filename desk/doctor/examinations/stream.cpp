#include "desk/doctor/examinations/examination.h"
#include "desk/doctor/observing/evidence.h"

#include <algorithm>

// What comes on the line that nobody here asked for.

namespace
{

const qint64 Second = 1000000;
const qint64 ShortListening = 5 * Second;
const qint64 LongestPeriod = 25 * Second;

using Strays = std::vector<Stray>;

// Bytes of no frame, without what is left of damaged replies.
Strays noiseOf(const Observations &seen)
{
    Strays noise;
    for (const Stray &one : seen.strays) {
        if (one.kind == SkippedPart::Noise && !seen.isOfReply(one))
            noise.push_back(one);
    }
    return noise;
}

bool isShorter(const Stray &left, const Stray &right)
{
    return left.bytes.size() < right.bytes.size();
}

// On each connection that stayed the same bytes came first. Those that come later too are a heartbeat.
Strays registrationOf(const Strays &noise)
{
    Strays first;
    const auto comesLater = [&](const Stray &packet) {
        return std::any_of(noise.begin(), noise.end(),
                           [&](const Stray &one) { return !one.isFirst && one.bytes == packet.bytes; });
    };
    for (const Stray &one : noise) {
        if (one.isFirst)
            first.push_back(one);
    }
    if (first.size() < 2)
        return {};
    // A heartbeat may follow at once.
    const Stray &shortest = *std::min_element(first.begin(), first.end(), isShorter);
    const bool isSame = std::all_of(first.begin(), first.end(),
                                    [&](const Stray &one) { return one.bytes.contains(shortest.bytes); });
    return isSame && !comesLater(shortest) ? first : Strays();
}

Strays without(const Strays &strays, const Strays &registration)
{
    Strays rest;
    for (const Stray &one : strays) {
        const bool isRegistration = std::any_of(registration.begin(), registration.end(),
                                                [&](const Stray &other) { return other.at == one.at; });
        if (!isRegistration)
            rest.push_back(one);
    }
    return rest;
}

// How long it takes until the bytes come again; 0 where they come without an interval. A packet that was
// missed, since nothing was connected, makes an interval twice or three times as long.
qint64 periodOf(const Strays &packets)
{
    std::vector<qint64> intervals;
    for (size_t i = 1; i < packets.size(); ++i) {
        if (packets[i].connection == packets[i - 1].connection)
            intervals.push_back(packets[i].at - packets[i - 1].at);
    }
    if (intervals.empty())
        return 0;
    const qint64 shortest = *std::min_element(intervals.begin(), intervals.end());
    const qint64 slack = std::max(shortest / 5, Second / 4);
    const auto fits = std::count_if(intervals.begin(), intervals.end(), [&](qint64 interval) {
        const qint64 times = (interval + shortest / 2) / std::max<qint64>(shortest, 1);
        return std::abs(interval - times * shortest) <= slack;
    });
    const bool isRegular = fits * 5 >= static_cast<qint64>(intervals.size()) * 4;
    return isRegular && shortest > Second / 5 ? shortest : 0;
}

// The packets that come most often alike.
Strays alikeIn(const Strays &strays)
{
    Strays best;
    for (const Stray &one : strays) {
        Strays alike;
        std::copy_if(strays.begin(), strays.end(), std::back_inserter(alike),
                     [&](const Stray &other) { return other.bytes == one.bytes; });
        if (alike.size() > best.size())
            best = alike;
    }
    return best;
}

bool hasUnclearNoise(const Observations &seen)
{
    const Strays noise = noiseOf(seen);
    const Strays rest = without(noise, registrationOf(noise));
    const bool isAtRest =
        std::any_of(rest.begin(), rest.end(), [](const Stray &one) { return one.asked < 0; });
    return !rest.empty() && !rest.back().isFirst && (isAtRest || rest.size() < 3) && alikeIn(rest).size() < 3;
}

void listen(Examiner &examiner, qint64 time)
{
    const qint64 until = examiner.now() + time;
    while (examiner.now() < until && !examiner.isCancelled() && examiner.connect())
        examiner.listen(until - examiner.now());
}

// A registration packet is one when it comes on the next connection too.
void observe(Examiner &examiner)
{
    if (examiner.seen().connections.empty())
        return;
    examiner.showProgress(QStringLiteral("listening"));
    // Where others had to be asked first there is less time.
    const bool isLate = examiner.now() > examiner.options().longestTime / 2;
    const qint64 listenTime = examiner.options().listenTime;
    const qint64 time = isLate ? std::min(listenTime, ShortListening) : listenTime;
    const qint64 left = examiner.options().longestTime - examiner.now();
    listen(examiner, std::min(time, left));
    const bool hasFirst = std::any_of(examiner.seen().strays.begin(), examiner.seen().strays.end(),
                                      [](const Stray &one) { return one.isFirst; });
    const auto opened = std::count_if(examiner.seen().connections.begin(), examiner.seen().connections.end(),
                                      [](const Connection &one) { return one.openedAt >= 0; });
    if (hasFirst && opened < 2 && examiner.hasTimeFor(2 * Second)) {
        examiner.disconnect();
        listen(examiner, 3 * Second / 2);
    }
    for (qint64 waited = 0; time > 0 && waited < LongestPeriod && hasUnclearNoise(examiner.seen()) &&
                            examiner.hasTimeFor(15 * Second);
         waited += Second)
        listen(examiner, Second);
}

void judgeNoise(const Observations &seen, Judgement &judgement)
{
    const Strays noise = noiseOf(seen);
    const Strays registration = registrationOf(noise);
    const Strays rest = without(noise, registration);
    const Strays heartbeat = alikeIn(rest);
    const qint64 period = periodOf(heartbeat);
    if (!registration.empty())
        judgement.add(
            FindingKind::Registration,
            QStringLiteral("the gateway sends a registration packet of %1 bytes on every connection")
                .arg(registration.front().bytes.size()),
            evidenceOf(registration));
    const bool isHeartbeat = heartbeat.size() > 1 && period > 0 && heartbeat.size() * 2 > rest.size();
    if (isHeartbeat)
        judgement.add(
            FindingKind::Heartbeat,
            QStringLiteral("the gateway sends a heartbeat packet every %1").arg(durationText(period)),
            evidenceOf(heartbeat));
    else if (!rest.empty())
        judgement.add(FindingKind::StrayBytes,
                      rest.size() == 1
                          ? QStringLiteral("bytes came once that are no frame")
                          : QStringLiteral("bytes that are no frame came %1 times").arg(rest.size()),
                      evidenceOf(rest));
}

// Frames of others, and those of stations asked here that nothing of this asked for.
void judgeTraffic(const Observations &seen, Judgement &judgement)
{
    Strays frames;
    Strays copies;
    for (const Stray &one : seen.strays) {
        const bool isInPlace =
            one.asked >= 0 && seen.asked[static_cast<size_t>(one.asked)].result == AskResult::OtherStation;
        if (isInPlace && !seen.hasTraffic())
            continue;
        const bool isCopy = std::any_of(seen.asked.begin(), seen.asked.end(), [&](const Asked &asked) {
            return asked.reply == one.bytes && one.at >= asked.sentAt &&
                   one.at - asked.repliedAt < Second / 5;
        });
        if (one.kind != SkippedPart::Noise)
            (isCopy ? copies : frames).push_back(one);
    }
    if (frames.size() > 1)
        judgement.add(FindingKind::OtherMaster,
                      QStringLiteral("another master is on the line: %1 frames that nothing here asked for")
                          .arg(frames.size()),
                      evidenceOf(frames));
    else if (copies.size() > 1)
        judgement.add(FindingKind::StrayBytes,
                      QStringLiteral("replies came again, %1 times").arg(copies.size()), evidenceOf(copies));
}

void judgeEcho(const Observations &seen, Judgement &judgement)
{
    const auto echoed =
        std::find_if(seen.asked.begin(), seen.asked.end(), [](const Asked &one) { return one.isEchoed; });
    if (echoed == seen.asked.end())
        return;
    const bool isAlone = seen.working < 0;
    judgement.add(FindingKind::Echo,
                  isAlone ? QStringLiteral("nothing comes back but what was sent")
                          : QStringLiteral("the line echoes: every request comes back in front of its reply"),
                  evidenceOf(*echoed),
                  isAlone
                      ? QStringLiteral("The echo shows that the way to the serial line is in order; nobody "
                                       "answers there: check the slave's power, station, wiring and speed.")
                      : QString());
}

void judgeIdleEnds(const Observations &seen, Judgement &judgement)
{
    QStringList evidence;
    qint64 shortest = 0;
    for (const Connection &one : seen.connections) {
        const qint64 idle = one.endedAt - one.quietSince;
        if (one.openedAt < 0 || one.endedAt < 0 || idle < Second)
            continue;
        evidence += eventText(one.quietSince, QStringLiteral("the line is at rest"));
        evidence += eventText(one.endedAt, QStringLiteral("the other side ends the connection"));
        shortest = shortest == 0 ? idle : std::min(shortest, idle);
    }
    if (!evidence.isEmpty())
        judgement.add(FindingKind::IdleClose,
                      QStringLiteral("the gateway ends a connection that is at rest for %1")
                          .arg(durationText(shortest)),
                      evidence.mid(0, 4));
}

Judgement judge(const Observations &seen, const DoctorOptions & /*options*/)
{
    Judgement judgement;
    judgeEcho(seen, judgement);
    judgeNoise(seen, judgement);
    judgeTraffic(seen, judgement);
    judgeIdleEnds(seen, judgement);
    judgement.remedy.worksNow = seen.working >= 0;
    return judgement;
}

} // namespace

Examination streamExamination()
{
    return {"listening", observe, judge};
}
