#pragma once

#include "apps/driverhost/commands/job.h"
#include "apps/driverhost/console/plan_options.h"

/// What is done on the line with readings and with what is known of their stations; the exit code.
using PlannedTask =
    std::function<int(Session &session, const std::vector<Reading> &readings, Learnt &learnt)>;

/// A job that begins with what was learnt before, and keeps what it learns, where the options say so.
Job plannedJob(const LinkSettings &link, const QStringList &tags, const std::vector<Reading> &readings,
               const PlanOptions &plan, const PlannedTask &task);
