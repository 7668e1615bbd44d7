#include "desk/doctor/examinations/examination.h"
#include "desk/doctor/observing/evidence.h"
#include "desk/link/tcp_line.h"

#include <algorithm>

// Whether there is a connection, and whether it stays.

namespace
{

const qint64 Second = 1000000;

bool isRefused(const Connection &connection)
{
    return connection.error.contains(QLatin1String("refused"));
}

bool isEndedAtOnce(const Connection &connection)
{
    return connection.openedAt >= 0 && connection.endedAt >= 0 && !connection.wasAsked &&
           connection.endedAt - connection.openedAt < Second;
}

void observe(Examiner &examiner)
{
    for (const qint64 pause : {qint64(0), Second, 2 * Second, 4 * Second}) {
        examiner.pause(pause);
        if (examiner.tryToConnect()) {
            examiner.listen(Second);
            if (examiner.isConnected())
                return;
        } else if (pause > 0 || examiner.isCancelled() || !isRefused(examiner.seen().connections.back())) {
            return;
        }
    }
}

QStringList evidenceOf(const Observations &seen)
{
    QStringList lines;
    for (const Connection &one : seen.connections) {
        if (one.openedAt < 0)
            lines += eventText(one.beganAt, one.error);
        else
            lines += eventText(one.openedAt, QStringLiteral("connected"));
        if (one.endedAt >= 0)
            lines += eventText(one.endedAt, one.isReset ? QStringLiteral("reset by the other side")
                                                        : QStringLiteral("closed by the other side"));
    }
    return lines;
}

Judgement judgeRefusal(const Observations &seen, const QString &endpoint)
{
    Judgement judgement;
    judgement.explainsAll = true;
    judgement.remedy.worksNow = false;
    const Connection &last = seen.connections.back();
    if (last.error.endsWith(QLatin1String(UnknownHost)))
        judgement.add(FindingKind::HostUnknown, QStringLiteral("nobody knows the host of %1").arg(endpoint),
                      evidenceOf(seen));
    else if (isRefused(last))
        judgement.add(FindingKind::NobodyListens, QStringLiteral("nobody listens at %1").arg(endpoint),
                      evidenceOf(seen));
    else
        judgement.add(FindingKind::Unreachable, QStringLiteral("nobody answers at %1").arg(endpoint),
                      evidenceOf(seen));
    return judgement;
}

Judgement judge(const Observations &seen, const DoctorOptions &options)
{
    Judgement judgement;
    const std::vector<Connection> &all = seen.connections;
    const QString endpoint = endpointText(options.target.host, options.target.port);
    const auto isOpened = [](const Connection &one) { return one.openedAt >= 0; };
    if (all.empty())
        return judgement;
    if (std::none_of(all.begin(), all.end(), isOpened))
        return judgeRefusal(seen, endpoint);
    const auto ended = std::count_if(all.begin(), all.end(), isEndedAtOnce);
    const auto opened = std::count_if(all.begin(), all.end(), isOpened);
    if (!seen.strays.empty() && ended == opened)
        return judgement;
    if (ended == opened) {
        judgement.explainsAll = true;
        judgement.remedy.worksNow = false;
        judgement.add(FindingKind::ClosedAtOnce,
                      QStringLiteral("%1 takes connections and ends them at once").arg(endpoint),
                      evidenceOf(seen));
    } else if (ended > 0 || isRefused(all.front())) {
        judgement.add(FindingKind::SlotHeld,
                      QStringLiteral("%1 refuses a new connection for some seconds").arg(endpoint),
                      evidenceOf(seen));
    }
    return judgement;
}

} // namespace

Examination connectionExamination()
{
    return {"connecting", observe, judge};
}
