#include "desk/doctor/examinations/refusal.h"

#include "desk/doctor/observing/evidence.h"
#include "desk/doctor/observing/wanted_value.h"
#include "desk/wire/frame_text.h"

void addRefusal(const Asked &refusal, const QString &what, const Observations &seen, Judgement &judgement)
{
    const Area area = areaOfFunction(refusal.function());
    const QStringList evidence = evidenceOf(refusal);
    switch (refusal.exception()) {
    case modbus::IllegalFunction:
        judgement.add(FindingKind::FunctionUnknown,
                      QStringLiteral("station %1 does not know function %2, which reads %3")
                          .arg(seen.working)
                          .arg(refusal.function())
                          .arg(lettersOf(area)),
                      evidence);
        break;
    case modbus::IllegalDataAddress:
        if (seen.readOf(area) == nullptr)
            judgement.add(FindingKind::AreaEmpty,
                          QStringLiteral("station %1 has nothing in %2 where it was tried")
                              .arg(QString::number(seen.working), lettersOf(area)),
                          evidence);
        else
            judgement.add(FindingKind::AddressMissing,
                          QStringLiteral("station %1 has no %2").arg(QString::number(seen.working), what),
                          evidence);
        break;
    default:
        judgement.remedy.worksNow = false;
        judgement.add(FindingKind::DeviceRefuses,
                      QStringLiteral("station %1 answers with exception %2 (%3)")
                          .arg(QString::number(seen.working), QString::number(refusal.exception()),
                               exceptionName(refusal.exception())),
                      evidence);
    }
}
