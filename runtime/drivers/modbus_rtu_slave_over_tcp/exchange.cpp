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
    if (device->writeData(request.constData(), request.size()) != request.size()) {
        setCommError(device->errorString());
        device->close();
        return false;
    }

    std::memset(reply, 0, sizeof reply);
    char *buffer = reinterpret_cast<char *>(reply);
    const int received = device->readData(buffer, FirstStage);
    if (!checkMinADU(device, buffer, received))
        return false;
    if (!checkException(buffer, static_cast<unsigned char>(request.at(1))))
        return false;

    if (device->readData(buffer + FirstStage, restSize) != restSize) {
        setCommError(QLatin1String("packet loss"));
        device->close();
        return false;
    }
    return checkCRC(reply, FirstStage + restSize);
}

bool DriverModbusRtuSlaveOverTcp::checkMinADU(AbstractDeviceInterface *device, const char *reply,
                                              int received)
{
    if (received <= 0) {
        setCommError(QLatin1String("PLC no response"));
        device->close();
        return false;
    }
    if (received != FirstStage) {
        setCommError(QString::fromLatin1("received bytes < %1").arg(FirstStage));
        device->close();
        return false;
    }
    const int station = static_cast<unsigned char>(reply[0]);
    if (station != device->stationId()) {
        setCommError(QString::fromLatin1("invalid slave id:%1").arg(station));
        return false;
    }
    return true;
}

bool DriverModbusRtuSlaveOverTcp::checkException(const char *reply, unsigned char function)
{
    const auto *bytes = reinterpret_cast<const unsigned char *>(reply);
    if (bytes[1] == function)
        return true;
    if (bytes[1] != (function | 0x80)) {
        setCommError(QLatin1String("invalid response"));
        return false;
    }
    if (checkCRC(bytes, FirstStage)) {
        const QString code = QString::number(bytes[2], 16).toUpper().rightJustified(2, QLatin1Char('0'));
        setCommError(QLatin1String("exception code:0x") + code);
    }
    return false;
}

bool DriverModbusRtuSlaveOverTcp::checkCRC(const unsigned char *reply, int size)
{
    if (ModbusRTUSlaveCheckCRC(reply, static_cast<unsigned int>(size)))
        return true;
    setCommError(QLatin1String("CRC error"));
    return false;
}
