#pragma once

#include "desk/output/fields.h"
#include "desk/plan/plan_report.h"

/// A plan as lines of the format: for people with what it rests on, for programs a request a line.
QStringList linesOf(const PlanReport &report, OutputFormat format);
