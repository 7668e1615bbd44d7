#include "desk/doctor/examinations/examination.h"
#include "desk/doctor/observing/evidence.h"
#include "desk/wire/frame_text.h"
#include "desk/wire/rtu_frame.h"

#include <algorithm>

// How much the station takes at once.

namespace
{

const qint64 LongestWait = 20000000;

bool isLonger(const Asked *left, const Asked *right)
{
    return wordAt(left->request, 4) < wordAt(right->request, 4);
}

// The longest read of registers that was answered, or of bits where there are no registers.
const Asked *longestRead(const Observations &seen)
{
    std::vector<const Asked *> registers;
    std::vector<const Asked *> bits;
    for (const Asked &one : seen.asked) {
        const bool isRead = one.result == AskResult::Answered && one.station() == seen.working &&
                            modbus::isRead(one.function());
        if (isRead)
            (modbus::isReadOfBits(one.function()) ? bits : registers).push_back(&one);
    }
    const std::vector<const Asked *> &reads = registers.empty() ? bits : registers;
    return reads.empty() ? nullptr : *std::max_element(reads.begin(), reads.end(), isLonger);
}

// A try that is not answered is no proof where replies are lost or damaged: that is only said of those.
void observe(Examiner &examiner)
{
    const Asked *longest = longestRead(examiner.seen());
    if (longest == nullptr)
        return;
    const Asked known = *longest;
    const Area area = areaOfFunction(known.function());
    const int offset = wordAt(known.request, 2);
    const int station = examiner.seen().working;
    const int most = isBitArea(area) ? modbus::MaxReadBits : modbus::MaxReadRegisters;
    int low = wordAt(known.request, 4);
    // Long replies take longer, the more so on slow lines and where they come in parts.
    const qint64 usual = examiner.usualWait();
    const int knownSize = std::max(int(known.reply.size()), 1);
    const auto waitFor = [&](const QByteArray &request) {
        return std::min(usual + known.latency() * replySizeFor(request) / knownSize, LongestWait);
    };
    int high = std::min(most, modbus::AddressSpace - offset) + 1;
    for (int next = high - 1; low + 1 < high; next = (low + high) / 2) {
        const QByteArray request = readRequest(station, area, offset, next);
        if (!examiner.hasTimeFor(waitFor(request)))
            return;
        Asked asked = examiner.ask(Purpose::Length, request, waitFor(request));
        if (!asked.isAnswer() && examiner.hasTimeFor(waitFor(request)))
            asked = examiner.ask(Purpose::Length, request, waitFor(request));
        (asked.result == AskResult::Answered ? low : high) = next;
    }
}

// Why more is not taken.
QString limitText(const Observations &seen)
{
    const Asked *last = nullptr;
    for (const Asked *one : seen.askedFor(Purpose::Length)) {
        if (one->result != AskResult::Answered && (last == nullptr || isLonger(one, last)))
            last = one;
    }
    if (last == nullptr)
        return {};
    const int items = wordAt(last->request, 4);
    if (last->result == AskResult::Refused)
        return QStringLiteral("; %1 are refused with exception %2 (%3)")
            .arg(QString::number(items), QString::number(last->exception()),
                 exceptionName(last->exception()));
    return QStringLiteral("; %1 are not answered").arg(items);
}

Judgement judge(const Observations &seen, const DoctorOptions & /*options*/)
{
    Judgement judgement;
    const Asked *longest = longestRead(seen);
    if (longest == nullptr || seen.askedFor(Purpose::Length).empty())
        return judgement;
    judgement.add(FindingKind::LargestRequest,
                  QStringLiteral("the largest request that was answered reads %1 %2%3")
                      .arg(QString::number(wordAt(longest->request, 4)),
                           modbus::isReadOfBits(longest->function()) ? QStringLiteral("bits")
                                                                     : QStringLiteral("registers"),
                           limitText(seen)),
                  {});
    return judgement;
}

} // namespace

Examination lengthExamination()
{
    return {"trying longer requests", observe, judge};
}
