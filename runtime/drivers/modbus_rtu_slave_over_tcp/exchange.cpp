#include "drivers/modbus_rtu_slave_over_tcp/exchange.h"

#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"
#include "drivers/modbus_rtu_slave_over_tcp/rtu_frame.h"
#include "drivers/qt/qt_lines.h"

#include <cstring>

namespace
{

// A whole exception reply, or the beginning of any other.
const int FirstStage = 5;
// What is left of the eight bytes that confirm a write when the first five are there.
const int EchoRest = 3;

} // namespace

// Sends the request and takes a reply of five bytes and restSize more. True when the whole reply passed every
// check; its bytes 2 and up are the caller's to judge.
bool DriverModbusRtuSlaveOverTcp::exchange(AbstractDeviceInterface *device, const QByteArray &request,
                                           int restSize, Reply &reply)
{
    if (device->writeData(request.constData(), sizeOf(request)) != request.size())
        return failAndClose(device, device->errorString());

    std::memset(reply, 0, sizeof reply);
    char *buffer = reinterpret_cast<char *>(reply);
    const int received = device->readData(buffer, FirstStage);
    if (!checkMinADU(device, buffer, received))
        return false;
    if (!checkException(buffer, static_cast<unsigned char>(request.at(1))))
        return false;

    if (device->readData(buffer + FirstStage, restSize) != restSize)
        return failAndClose(device, "packet loss");
    return checkCRC(reply, FirstStage + restSize);
}

// The same for a write, whose reply repeats what was written.
bool DriverModbusRtuSlaveOverTcp::confirmed(AbstractDeviceInterface *device, const QByteArray &request)
{
    Reply reply;
    return exchange(device, request, EchoRest, reply);
}

bool DriverModbusRtuSlaveOverTcp::checkMinADU(AbstractDeviceInterface *device, const char *reply,
                                              int received)
{
    if (received <= 0)
        return failAndClose(device, "PLC no response");
    if (received != FirstStage)
        return failAndClose(device, "received bytes < 5");
    const int station = static_cast<unsigned char>(reply[0]);
    if (station != device->stationId())
        return fail("invalid slave id:%1", station);
    return true;
}

bool DriverModbusRtuSlaveOverTcp::checkException(const char *reply, unsigned char function)
{
    const auto *bytes = reinterpret_cast<const unsigned char *>(reply);
    if (bytes[1] == function)
        return true;
    if (bytes[1] != (function | 0x80))
        return fail("invalid response");
    if (!checkCRC(bytes, FirstStage))
        return false;
    return failWithException(bytes[2]);
}

bool DriverModbusRtuSlaveOverTcp::failWithException(unsigned char code)
{
    const QString digits = QString::number(code, 16).toUpper().rightJustified(2, QLatin1Char('0'));
    return fail(QLatin1String("exception code:0x") + digits);
}

bool DriverModbusRtuSlaveOverTcp::checkCRC(const unsigned char *reply, int size)
{
    if (!ModbusRTUSlaveCheckCRC(reply, static_cast<unsigned int>(size)))
        return fail("CRC error");
    return true;
}

bool DriverModbusRtuSlaveOverTcp::failAndClose(AbstractDeviceInterface *device, const QString &text)
{
    setCommError(text);
    device->close();
    return false;
}

bool DriverModbusRtuSlaveOverTcp::failAndClose(AbstractDeviceInterface *device, const char *text)
{
    return failAndClose(device, QString::fromLatin1(text));
}
