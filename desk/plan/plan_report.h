#pragma once

#include "desk/plan/area_plan.h"

#include <QStringList>

/// A request of a plan, and why it is as it is.
struct PlannedRequest {
    AreaRange range;
    int points = 0; ///< that it brings
    int filled = 0; ///< registers or bits that nobody wants
    double microseconds = 0;
    QString why;
};

/// Points that a plan does not ask for, since they were refused.
struct RefusedPoints {
    AreaRange range;
    int points = 0;
    Refusals::Refusal refusal;
};

/// What a station's requests cost and carry, as far as it is known.
struct RequestTerms {
    int station = 1;
    bool areBits = false;
    RequestCost cost;
    bool isMeasured = false; ///< otherwise assumed
    int maxCount = 0;
};

/// How the points of areas would be read next.
struct PlanReport {
    std::vector<RequestTerms> terms;
    std::vector<PlannedRequest> requests;
    std::vector<RefusedPoints> refused;

    double microseconds() const;
};
PlanReport planReportOf(std::vector<AreaPlan> &areaPlans, Learnt &learnt);
