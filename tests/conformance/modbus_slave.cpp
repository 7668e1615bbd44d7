#include "kit/program/conformance.h"
#include "tests/doubles/modbus_subject.h"

DRIVER_CONFORMANCE_SUBJECT(ModbusSubject)
