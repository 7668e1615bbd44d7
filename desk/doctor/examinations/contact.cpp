#include "desk/doctor/examinations/examination.h"

// Whether the station answers at all. What its silence means the next ones tell.

namespace
{

const qint64 Second = 1000000;
const int MostSpoilt = 6;

QByteArray firstRequest(const DoctorOptions &options)
{
    const int station = options.target.station;
    if (options.wanted.empty())
        return readRequest(station, Area::HoldingRegisters, 0, 1);
    const Address &address = options.wanted.front().point.at.address;
    return readRequest(station, address.area, address.wireOffset(), 1);
}

// A gateway may need a request or two to wake up.
void observe(Examiner &examiner)
{
    const QByteArray request = firstRequest(examiner.options());
    int quiet = 0;
    for (int i = 0; i < MostSpoilt && quiet < 3; ++i) {
        const qint64 wait = i == 0 ? examiner.longWait() : 2 * Second;
        if (!examiner.hasTimeFor(wait))
            return;
        const Asked asked = examiner.ask(Purpose::Contact, request, wait);
        if (asked.isAnswer()) {
            examiner.seen().working = asked.isStationAbsent() ? -1 : asked.station();
            return;
        }
        quiet += examiner.seen().isSpoilt(asked) ? 0 : 1;
    }
}

Judgement judge(const Observations & /*seen*/, const DoctorOptions & /*options*/)
{
    return {};
}

} // namespace

Examination contactExamination()
{
    return {"asking the station", observe, judge};
}
