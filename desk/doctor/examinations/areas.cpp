#include "desk/doctor/examinations/examination.h"
#include "desk/doctor/examinations/refusal.h"
#include "desk/doctor/observing/wanted_value.h"
#include "desk/wire/frame_text.h"
#include "desk/wire/rtu_frame.h"

// What can be read: one place of every area.

namespace
{

const qint64 LongestSearch = 10000000;
const Area Areas[] = {Area::HoldingRegisters, Area::InputRegisters, Area::Coils, Area::DiscreteInputs};
// Where devices begin: addresses that count from 1, from 0, and round numbers.
const int Tries[] = {0, 1, 9, 99, 199, 999, 1999, 3999, 4095, 9999, 39999};

void search(Examiner &examiner, Area area)
{
    const qint64 end = examiner.now() + LongestSearch;
    for (const int offset : Tries) {
        if (examiner.seen().readOf(area) != nullptr || examiner.now() > end ||
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
    for (const Area area : Areas) {
        if (examiner.seen().working >= 0)
            search(examiner, area);
    }
}

QString stateOf(const Observations &seen, Area area)
{
    if (const Asked *read = seen.readOf(area))
        return QStringLiteral("%1%2 is readable").arg(lettersOf(area)).arg(wordAt(read->request, 2) + 1);
    const Asked *refusal = seen.refusalOf(area);
    if (refusal == nullptr)
        return QStringLiteral("%1 was not answered").arg(lettersOf(area));
    return QStringLiteral("%1: exception %2 (%3)")
        .arg(lettersOf(area), QString::number(refusal->exception()), exceptionName(refusal->exception()));
}

// Nothing of the slave is readable.
void judgeAll(const Observations &seen, Judgement &judgement)
{
    const Asked *last = nullptr;
    for (const Area area : Areas) {
        const Asked *refusal = seen.refusalOf(area);
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
    if (options.wanted.empty() && seen.firstRead() == nullptr)
        judgeAll(seen, judgement);
    return judgement;
}

} // namespace

Examination areaExamination()
{
    return {"looking what can be read", observe, judge};
}
