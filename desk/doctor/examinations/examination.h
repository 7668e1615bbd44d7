#pragma once

#include "desk/doctor/observing/examiner.h"
#include "desk/doctor/observing/finding.h"

/// One step from the cable up.
struct Examination {
    const char *doing; ///< for people who wait
    /// Makes the observations that it needs; asks nothing where that can tell nothing any more.
    void (*observe)(Examiner &examiner);
    /// What all observations say of its topic. Sends nothing.
    Judgement (*judge)(const Observations &seen, const DoctorOptions &options);
};

/// All of them, in their order.
const std::vector<Examination> &examinations();

Examination connectionExamination();
Examination contactExamination();
Examination serviceExamination();
Examination stationExamination();
Examination streamExamination();
Examination sampleExamination();
Examination pauseExamination();
Examination failureExamination();
Examination damageExamination();
Examination placeExamination();
Examination valueExamination();
Examination areaExamination();
Examination lengthExamination();
Examination functionExamination();
