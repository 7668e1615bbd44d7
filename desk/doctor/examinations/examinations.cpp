#include "desk/doctor/examinations/examination.h"

const std::vector<Examination> &examinations()
{
    static const std::vector<Examination> all = {
        connectionExamination(), contactExamination(),  serviceExamination(), stationExamination(),
        streamExamination(),     sampleExamination(),   pauseExamination(),   failureExamination(),
        damageExamination(),     placeExamination(),    valueExamination(),   areaExamination(),
        lengthExamination(),     functionExamination(),
    };
    return all;
}
