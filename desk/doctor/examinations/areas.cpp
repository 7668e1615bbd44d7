#include "desk/doctor/examinations/examination.h"
#include "desk/doctor/observing/evidence.h"
#include "desk/doctor/observing/wanted_value.h"
#include "desk/wire/frame_text.h"
#include "desk/wire/rtu_frame.h"

#include <algorithm>

// What can be read: the places that are wanted, and one place of every area.

namespace
{

const qint64 LongestSearch = 10000000;
const size_t MostWanted = 20;
const Area Areas[] = {Area::HoldingRegisters, Area::InputRegisters, Area::Coils, Area::DiscreteInputs};
// Where devices begin: addresses that count from 1, from 0, and round numbers.
const int Tries[] = {0, 1, 9, 99, 199, 999, 1999, 3999, 4095, 9999, 39999};

const Asked *readOf(const Observations &seen, Area area)
{
    for (const Asked &one : seen.asked) {
        const bool isRead = one.purpose != Purpose::Service && one.function() == readFunction(area);
        if (isRead && one.station() == seen.working && one.result == AskResult::Answered)
            return &one;
    }
    return nullptr;
}

// The last of them, for the code in it.
const Asked *refusalOf(const Observations &seen, Area area)
{
    const Asked *refusal = nullptr;
    for (const Asked &one : seen.asked) {
        if (one.function() == readFunction(area) && one.station() == seen.working &&
            one.result == AskResult::Refused && one.purpose != Purpose::Length)
            refusal = &one;
    }
    return refusal;
}

void search(Examiner &examiner, Area area)
{
    const qint64 end = examiner.now() + LongestSearch;
    for (const int offset : Tries) {
        if (readOf(examiner.seen(), area) != nullptr || examiner.now() > end ||
            !examiner.hasTimeFor(examiner.usualWait()))
            return;
        const Asked asked =
            examiner.askPatiently(Purpose::Area, readRequest(examiner.seen().working, area, offset, 1));
        if (asked.exception() == modbus::IllegalFunction || !asked.isAnswer())
            return;
    }
}

void observe(Examiner &examiner)
{
    if (examiner.seen().working < 0)
        return;
    const std::vector<Wanted> &wanted = examiner.options().wanted;
    for (size_t i = 0; i < wanted.size() && i < MostWanted && examiner.hasTimeFor(examiner.usualWait()); ++i)
        examiner.askPatiently(Purpose::Area, requestFor(examiner.seen().working, wanted[i]));
    for (const Area area : Areas)
        search(examiner, area);
}

QString stateOf(const Observations &seen, Area area)
{
    if (const Asked *read = readOf(seen, area))
        return QStringLiteral("%1%2 is readable").arg(lettersOf(area)).arg(wordAt(read->request, 2) + 1);
    const Asked *refusal = refusalOf(seen, area);
    if (refusal == nullptr)
        return QStringLiteral("%1 was not answered").arg(lettersOf(area));
    return QStringLiteral("%1: exception %2 (%3)")
        .arg(lettersOf(area), QString::number(refusal->exception()), exceptionName(refusal->exception()));
}

void addRefusal(const Asked &refusal, const QString &what, const Observations &seen, Judgement &judgement)
{
    const Area area = areaOfFunction(refusal.function());
    const QStringList evidence = evidenceOf(refusal);
    switch (refusal.exception()) {
    case modbus::IllegalFunction:
        judgement.add(FindingKind::FunctionUnknown,
                      QStringLiteral("station %1 does not know function %2, which reads %3")
                          .arg(seen.working)
                          .arg(refusal.function())
                          .arg(lettersOf(area)),
                      evidence);
        break;
    case modbus::IllegalDataAddress:
        if (readOf(seen, area) == nullptr)
            judgement.add(FindingKind::AreaEmpty,
                          QStringLiteral("station %1 has nothing in %2 where it was tried")
                              .arg(QString::number(seen.working), lettersOf(area)),
                          evidence);
        else
            judgement.add(FindingKind::AddressMissing,
                          QStringLiteral("station %1 has no %2").arg(QString::number(seen.working), what),
                          evidence);
        break;
    default:
        judgement.remedy.worksNow = false;
        judgement.add(FindingKind::DeviceRefuses,
                      QStringLiteral("station %1 answers with exception %2 (%3)")
                          .arg(QString::number(seen.working), QString::number(refusal.exception()),
                               exceptionName(refusal.exception())),
                      evidence);
    }
}

bool has(const Judgement &judgement, const Judgement &other)
{
    return std::any_of(judgement.findings.begin(), judgement.findings.end(), [&](const Finding &one) {
        return one.kind == other.findings.front().kind && one.sentence == other.findings.front().sentence;
    });
}

void judgeWanted(const Observations &seen, const DoctorOptions &options, Judgement &judgement)
{
    for (const Wanted &wanted : options.wanted) {
        const QByteArray request = requestFor(seen.working, wanted);
        const auto isMeant = [&](const Asked &one) { return one.request == request && one.isAnswer(); };
        const auto answer = std::find_if(seen.asked.begin(), seen.asked.end(), isMeant);
        if (answer == seen.asked.end() || answer->exception() == 0)
            continue;
        Judgement one;
        addRefusal(*answer, labelOf(wanted.point), seen, one);
        if (!has(judgement, one))
            judgement.findings.push_back(one.findings.front());
        judgement.remedy.worksNow = judgement.remedy.worksNow && one.remedy.worksNow;
    }
}

// Nothing of the slave is readable.
void judgeAll(const Observations &seen, Judgement &judgement)
{
    const Asked *last = nullptr;
    for (const Area area : Areas) {
        const Asked *refusal = refusalOf(seen, area);
        if (last == nullptr || (refusal != nullptr && last->exception() == modbus::IllegalFunction))
            last = refusal;
    }
    if (last != nullptr)
        addRefusal(*last, QString(), seen, judgement);
}

Judgement judge(const Observations &seen, const DoctorOptions &options)
{
    Judgement judgement;
    if (seen.working < 0 || seen.askedFor(Purpose::Area).empty())
        return judgement;
    QStringList states;
    for (const Area area : Areas)
        states += stateOf(seen, area);
    judgement.add(FindingKind::Areas, states.join(QStringLiteral("; ")), {});
    judgeWanted(seen, options, judgement);
    if (options.wanted.empty() && seen.firstRead() == nullptr)
        judgeAll(seen, judgement);
    return judgement;
}

} // namespace

Examination areaExamination()
{
    return {"looking what can be read", observe, judge};
}
