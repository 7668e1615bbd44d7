#include "apps/driverhost/commands/planned_job.h"

#include "apps/driverhost/console/messages.h"

Job plannedJob(const LinkSettings &link, const QStringList &tags, const std::vector<Reading> &readings,
               const PlanOptions &plan, const PlannedTask &task)
{
    const Result<Learnt> known = learntFor(plan, readings, link.channel.station);
    if (!known) {
        reportError(known.errorText());
        return OtherFailure;
    }
    return {link, tags, [=](Session &session) {
                Learnt learnt = *known;
                const int code = task(session, readings, learnt);
                return keepLearnt(plan, learnt, code);
            }};
}
