#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

#include "drivers/tools/command_data.h"

// The error state of the driver, and the texts that more than one file raises.

namespace
{

QString commandDetails(const char *transfer, const char *items, const char *direction, unsigned char station,
                       const CommunicatorCommand &command)
{
    return QString::fromLatin1(" (%1 %2 %3 %4 %5-")
               .arg(QLatin1String(transfer), QString::number(command.count), QLatin1String(items),
                    QLatin1String(direction), QString::number(station)) +
           command.address + QLatin1Char(')');
}

} // namespace

bool DriverModbusRtuSlaveOverTcp::hasError()
{
    return errorFlag;
}

QString DriverModbusRtuSlaveOverTcp::getLastError()
{
    return lastError;
}

void DriverModbusRtuSlaveOverTcp::clearError()
{
    errorFlag = false;
}

void DriverModbusRtuSlaveOverTcp::setCommError(const QString &text)
{
    errorFlag = true;
    lastError = text;
}

bool DriverModbusRtuSlaveOverTcp::fail(const QString &text)
{
    setCommError(text);
    return false;
}

bool DriverModbusRtuSlaveOverTcp::fail(const char *text)
{
    return fail(QString::fromLatin1(text));
}

// The number takes the place of "%1".
bool DriverModbusRtuSlaveOverTcp::fail(const char *text, int number)
{
    return fail(QString::fromLatin1(text).arg(number));
}

bool DriverModbusRtuSlaveOverTcp::refuseWrite(const char *item, const QString &target)
{
    return fail(QString::fromLatin1("can't write any %1 to %2").arg(QLatin1String(item), target));
}

void DriverModbusRtuSlaveOverTcp::appendCmdToReadCommError(unsigned char station,
                                                           const CommunicatorCommand &command)
{
    static const char *const items[] = {"bit(s)", "byte(s)", "word(s)", "dword(s)"};
    if (command.dataType >= BitItem && command.dataType <= DoubleWordItem)
        lastError += commandDetails("read", items[command.dataType], "from", station, command);
}

// Write texts have no "(s)": hosts and logs know both wordings.
void DriverModbusRtuSlaveOverTcp::appendCmdToWriteCommError(unsigned char station,
                                                            const CommunicatorCommand &command)
{
    static const char *const items[] = {"bit", "byte", "word", "dword"};
    if (command.dataType >= BitItem && command.dataType <= DoubleWordItem)
        lastError += commandDetails("write", items[command.dataType], "to", station, command);
}
