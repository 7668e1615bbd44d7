#include "desk/doctor/examinations/examination.h"
#include "desk/doctor/observing/evidence.h"
#include "desk/wire/frame_text.h"
#include "desk/wire/rtu_frame.h"

#include <algorithm>

// Who answers where the station asked does not.

namespace
{

const qint64 Second = 1000000;
const int LastOfFirst = 10;
const int MostSpoilt = 4;

// The one in whose name a reply came goes first, and last of all the one asked before, once more.
std::vector<int> candidates(const Observations &seen)
{
    std::vector<int> stations;
    for (const Asked &one : seen.asked) {
        if (one.result == AskResult::OtherStation)
            stations.push_back(byteAt(one.reply, 0));
    }
    for (int station = 1; station <= LastOfFirst; ++station)
        stations.push_back(station);
    stations.push_back(modbus::MaxStation);
    std::vector<int> once;
    for (const int station : stations) {
        const bool isRepeated = std::find(once.begin(), once.end(), station) != once.end();
        if (station != seen.station && !isRepeated)
            once.push_back(station);
    }
    once.push_back(seen.station);
    return once;
}

const Asked *answerOf(const Observations &seen, int station)
{
    // A reply of another length may be one to another master.
    const auto answer = std::find_if(seen.asked.begin(), seen.asked.end(), [station](const Asked &one) {
        return one.station() == station && one.isAnswer() && one.result != AskResult::OtherLength &&
               !one.isStationAbsent();
    });
    return answer == seen.asked.end() ? nullptr : &*answer;
}

void observe(Examiner &examiner)
{
    if (examiner.seen().working >= 0 || examiner.seen().asked.empty())
        return;
    Observations &seen = examiner.seen();
    const Area area = areaOfFunction(seen.asked.front().function());
    qint64 wait = 2 * Second;
    for (const int station : candidates(seen)) {
        if (!examiner.hasTimeFor(wait))
            break;
        examiner.showProgress(QStringLiteral("asking station %1").arg(station));
        Asked asked = examiner.ask(Purpose::Station, readRequest(station, area, 0, 1), wait);
        for (int i = 1; i < MostSpoilt && seen.isSpoilt(asked) && examiner.hasTimeFor(wait); ++i)
            asked = examiner.ask(Purpose::Station, asked.request, wait);
        if (asked.isAnswer() && !asked.isStationAbsent())
            wait = std::min(wait, Second / 4 + 2 * asked.latency());
    }
    for (int station = 1; station <= modbus::MaxStation && seen.working < 0; ++station)
        seen.working = answerOf(seen, station) == nullptr ? -1 : station;
    // A reply of the station itself that came after all.
    if (answerOf(seen, seen.station) != nullptr)
        seen.working = seen.station;
}

const Asked *absence(const Observations &seen)
{
    const auto absent = std::find_if(seen.asked.begin(), seen.asked.end(), [&](const Asked &one) {
        return one.station() == seen.station && one.isStationAbsent();
    });
    return absent == seen.asked.end() ? nullptr : &*absent;
}

bool isAnsweredAsOther(const Observations &seen)
{
    return !seen.hasTraffic() && std::any_of(seen.asked.begin(), seen.asked.end(), [&](const Asked &one) {
        return one.station() == seen.station && one.result == AskResult::OtherStation;
    });
}

QString othersText(const Observations &seen)
{
    QStringList stations;
    for (int station = 1; station <= modbus::MaxStation; ++station) {
        if (answerOf(seen, station) != nullptr)
            stations += QString::number(station);
    }
    return stations.size() == 1 ? QStringLiteral("station %1 answers").arg(stations.front())
                                : QStringLiteral("stations %1 answer").arg(listText(stations));
}

Judgement judgeOther(const Observations &seen)
{
    Judgement judgement;
    judgement.remedy.station = seen.working;
    QStringList evidence = evidenceOf(seen.askedFor(Purpose::Contact), 1);
    evidence += evidenceOf(*answerOf(seen, seen.working));
    if (isAnsweredAsOther(seen))
        judgement.add(FindingKind::AnswersAsOther,
                      QStringLiteral("what station %1 is asked is answered in the name of station %2")
                          .arg(seen.station)
                          .arg(seen.working),
                      evidence);
    else
        judgement.add(FindingKind::WrongStation,
                      QStringLiteral("station %1 %2, and %3")
                          .arg(QString::number(seen.station),
                               absence(seen) == nullptr ? QStringLiteral("is silent")
                                                        : QStringLiteral("is not there, says the gateway"),
                               othersText(seen)),
                      evidence, QStringLiteral("Here: --station %1.").arg(seen.working));
    return judgement;
}

Judgement judgeAbsence(const Asked &absent, const DoctorOptions &options)
{
    Judgement judgement;
    judgement.remedy.worksNow = false;
    const qint64 timeout = qint64(1000) * options.exchange.timeout;
    QString change;
    if (absent.latency() > timeout) {
        judgement.remedy.timeout = roundedUp(absent.latency() * 3 / 2, 100);
        change = QStringLiteral("The gateway waits longer than the driver does, so its answer comes too late "
                                "to be seen: --timeout %1.")
                     .arg(*judgement.remedy.timeout);
    }
    judgement.add(FindingKind::StationAbsent,
                  QStringLiteral("the gateway answers, and does not reach station %1").arg(absent.station()),
                  evidenceOf(absent), change);
    return judgement;
}

Judgement judge(const Observations &seen, const DoctorOptions &options)
{
    Judgement judgement;
    if (seen.working == seen.station || seen.asked.empty())
        return judgement;
    if (seen.working >= 0)
        return judgeOther(seen);
    if (const Asked *absent = absence(seen))
        return judgeAbsence(*absent, options);
    judgement.remedy.worksNow = false;
    const bool isSpoilt = std::any_of(seen.asked.begin(), seen.asked.end(),
                                      [&](const Asked &one) { return seen.isSpoilt(one); });
    const std::vector<const Asked *> contacts = seen.askedFor(Purpose::Contact);
    if (isAnsweredAsOther(seen))
        judgement.add(
            FindingKind::AnswersAsOther,
            QStringLiteral("what station %1 is asked is answered in another's name").arg(seen.station),
            evidenceOf(contacts));
    else if (!isSpoilt && !seen.isEchoing())
        judgement.add(FindingKind::Silent, QStringLiteral("the connection stands, and nobody answers"),
                      evidenceOf(contacts));
    return judgement;
}

} // namespace

Examination stationExamination()
{
    return {"asking other stations", observe, judge};
}
