#include "desk/doctor/examinations/examination.h"
#include "desk/doctor/observing/evidence.h"
#include "desk/wire/frame_text.h"

#include <algorithm>

// Requests that were answered at other times, and not this time: refused, or the connection ended.

namespace
{

std::vector<const Asked *> samplesWith(const Observations &seen, bool (*isMeant)(const Asked &asked))
{
    std::vector<const Asked *> found;
    for (const Asked *one : seen.askedFor(Purpose::Sample)) {
        if (isMeant(*one))
            found.push_back(one);
    }
    return found;
}

bool isEnded(const Asked &asked)
{
    return asked.result == AskResult::Ended;
}

// What a device says that could at another time; a place that is missing is always.
bool isRefusedNow(const Asked &asked)
{
    return asked.exception() > modbus::IllegalDataValue;
}

void needRetries(size_t failed, size_t samples, const DoctorOptions &options, Judgement &judgement)
{
    const int retries = retriesFor(static_cast<double>(failed) / static_cast<double>(samples));
    if (retries > options.exchange.retries)
        judgement.remedy.retries = retries;
}

Judgement judge(const Observations &seen, const DoctorOptions &options)
{
    Judgement judgement;
    const size_t samples = seen.askedFor(Purpose::Sample).size();
    const std::vector<const Asked *> ended = samplesWith(seen, isEnded);
    const std::vector<const Asked *> refused = samplesWith(seen, isRefusedNow);
    if (!ended.empty()) {
        needRetries(ended.size(), samples, options, judgement);
        judgement.add(
            FindingKind::ConnectionDrops,
            QStringLiteral("%1 of %2 requests end with the connection").arg(ended.size()).arg(samples),
            evidenceOf(ended));
    }
    if (!refused.empty() && seen.firstRead() != nullptr) {
        needRetries(refused.size(), samples, options, judgement);
        const int code = refused.front()->exception();
        judgement.add(FindingKind::DeviceRefuses,
                      QStringLiteral("%1 of %2 requests are refused with exception %3 (%4)")
                          .arg(QString::number(refused.size()), QString::number(samples),
                               QString::number(code), exceptionName(code)),
                      evidenceOf(refused));
    }
    return judgement;
}

} // namespace

Examination failureExamination()
{
    return {"counting failures", nullptr, judge};
}
