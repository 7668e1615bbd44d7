#include "apps/driverhost/runs/range_answer.h"

RangeAnswer askForRange(Session &session, const Items &items, QByteArray &data)
{
    const std::optional<QByteArray> read = session.read(items);
    data = read.value_or(QByteArray());
    if (read)
        return RangeAnswer::There;
    const Failure failure = session.failure();
    if (failure.kind != FailureKind::Exception || failure.isStationAbsent() ||
        failure.exception == modbus::IllegalFunction || failure.exception == modbus::ServerDeviceBusy)
        return RangeAnswer::None;
    return failure.exception == modbus::IllegalDataValue ? RangeAnswer::TooMany : RangeAnswer::Missing;
}
