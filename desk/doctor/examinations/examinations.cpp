#include "desk/doctor/examinations/examination.h"

const std::vector<Examination> &examinations()
{
    static const std::vector<Examination> all = {
        connectionExamination(), contactExamination(), serviceExamination(), stationExamination(),
        streamExamination(),     sampleExamination(),  pauseExamination(),   damageExamination(),
        areaExamination(),       valueExamination(),   lengthExamination(),  functionExamination(),
    };
    return all;
}
