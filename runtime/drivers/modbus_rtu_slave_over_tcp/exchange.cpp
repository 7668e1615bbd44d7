#include "drivers/modbus_rtu_slave_over_tcp/exchange.h"

#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"
#include "drivers/modbus_rtu_slave_over_tcp/rtu_frame.h"

#include <cstring>

namespace
{

// A whole exception reply, or the begin of any other.
const int FirstStage = 5;

} // namespace

// Sends the request and takes a reply of five bytes and restSize more. True when the whole reply passed every
// check; its bytes 2 and up are the caller's to judge.
bool DriverModbusRtuSlaveOverTcp::exchange(AbstractDeviceInterface *device, const QByteArray &request,
                                           int restSize, Reply &reply)
{
    if (device->writeData(request.constData(), request.size()) != request.size())
        return failAndClose(device, device->errorString());

    std::memset(reply, 0, sizeof reply);
    char *buffer = reinterpret_cast<char *>(reply);
    const int received = device->readData(buffer, FirstStage);
    if (!checkMinADU(device, buffer, received))
        return false;
    if (!checkException(buffer, static_cast<unsigned char>(request.at(1))))
        return false;

    if (device->readData(buffer + FirstStage, restSize) != restSize)
        return failAndClose(device, QLatin1String("packet loss"));
    return checkCRC(reply, FirstStage + restSize);
}

bool DriverModbusRtuSlaveOverTcp::checkMinADU(AbstractDeviceInterface *device, const char *reply,
                                              int received)
{
    const int station = static_cast<unsigned char>(reply[0]);
    return (received == FirstStage && station == device->stationId()) ||
           refuseFirstStage(device, station, received);
}

bool DriverModbusRtuSlaveOverTcp::refuseFirstStage(AbstractDeviceInterface *device, int station, int received)
{
    if (received <= 0)
        return failAndClose(device, QLatin1String("PLC no response"));
    if (received != FirstStage)
        return failAndClose(device, QString::fromLatin1("received bytes < %1").arg(FirstStage));
    return fail(QString::fromLatin1("invalid slave id:%1").arg(station));
}

bool DriverModbusRtuSlaveOverTcp::checkException(const char *reply, unsigned char function)
{
    const auto *bytes = reinterpret_cast<const unsigned char *>(reply);
    return bytes[1] == function || refuseAnswer(bytes, function);
}

bool DriverModbusRtuSlaveOverTcp::refuseAnswer(const unsigned char *reply, unsigned char function)
{
    if (reply[1] != (function | 0x80))
        return fail(QLatin1String("invalid response"));
    const QString code = QString::number(reply[2], 16).toUpper().rightJustified(2, QLatin1Char('0'));
    return checkCRC(reply, FirstStage) && fail(QLatin1String("exception code:0x") + code);
}

bool DriverModbusRtuSlaveOverTcp::checkCRC(const unsigned char *reply, int size)
{
    return ModbusRTUSlaveCheckCRC(reply, static_cast<unsigned int>(size)) || fail(QLatin1String("CRC error"));
}

bool DriverModbusRtuSlaveOverTcp::fail(const QString &text)
{
    setCommError(text);
    return false;
}

bool DriverModbusRtuSlaveOverTcp::failAndClose(AbstractDeviceInterface *device, const QString &text)
{
    setCommError(text);
    device->close();
    return false;
}
