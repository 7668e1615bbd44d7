#include "desk/doctor/examinations/examination.h"
#include "desk/doctor/examinations/refusal.h"
#include "desk/doctor/observing/wanted_value.h"

#include <algorithm>

// Whether what is wanted can be read.

namespace
{

const size_t MostWanted = 20;

void observe(Examiner &examiner)
{
    const std::vector<Wanted> &wanted = examiner.options().wanted;
    if (examiner.seen().working < 0)
        return;
    for (size_t i = 0; i < wanted.size() && i < MostWanted && examiner.hasTimeFor(examiner.usualWait()); ++i)
        examiner.askPatiently(Purpose::Area, requestFor(examiner.seen().working, wanted[i]));
}

bool has(const Judgement &judgement, const Judgement &other)
{
    return std::any_of(judgement.findings.begin(), judgement.findings.end(), [&](const Finding &one) {
        return one.kind == other.findings.front().kind && one.sentence == other.findings.front().sentence;
    });
}

Judgement judge(const Observations &seen, const DoctorOptions &options)
{
    Judgement judgement;
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
    return judgement;
}

} // namespace

Examination placeExamination()
{
    return {"reading what is wanted", observe, judge};
}
