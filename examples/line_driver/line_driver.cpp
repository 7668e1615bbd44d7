#include "line_driver.h"

#include "drivers/device_setting.h"
#include "drivers/driver_setting.h"
#include "drivers/tools.h"
#include "line_frame.h"
#include "sdk/address_number.h"
#include "sdk/byte_text.h"

namespace
{

const int LastRegister = 65536;

// Zero-based; the text is one that accepts() let through.
unsigned short firstRegister(const CommunicatorCommand &command)
{
    return static_cast<unsigned short>(addressNumber(command.address, "D") - 1);
}

} // namespace

DRIVER_EXPORT_PLUGIN(line_driver, LineDriver)

extern "C" Q_DECL_EXPORT DriverInterface *CreateDriver()
{
    return new LineDriver;
}

QByteArray LineDriver::read(AbstractDeviceInterface *device, const CommunicatorCommand &command)
{
    QByteArray digits;
    if (!accepts(command))
        return digits;
    const QByteArray request =
        lineReadRequest(stationOf(device), firstRegister(command), static_cast<unsigned char>(command.count));
    attempt(device,
            [&]() { return exchange(device, request, LineRead, LineValueDigits * command.count, digits); });
    return lineValues(digits);
}

bool LineDriver::write(AbstractDeviceInterface *device, const CommunicatorCommand &command,
                       const QByteArray &data)
{
    if (!accepts(command))
        return false;
    const QByteArray request =
        lineWriteRequest(stationOf(device), firstRegister(command), ToSafeData(command, data));
    QByteArray nothing;
    return attempt(device, [&]() { return exchange(device, request, LineWrite, 0, nothing); });
}

bool LineDriver::accepts(const CommunicatorCommand &command)
{
    if (!isWordCommand(command))
        return fail(QString::fromLatin1("unsupported data type: %1").arg(command.dataType));
    const int number = addressNumber(command.address, "D");
    if (number < 1 || number > LastRegister)
        return fail(QString::fromLatin1("invalid address: %1").arg(command.address));
    if (command.count < 1 || command.count > MaxLineTransfer || number + command.count - 1 > LastRegister)
        return fail(
            QString::fromLatin1("can't transfer %1 words at %2").arg(command.count).arg(command.address));
    return true;
}

bool LineDriver::exchange(AbstractDeviceInterface *device, const QByteArray &request, char kind, int digits,
                          QByteArray &answer)
{
    if (!send(device, request))
        return false;
    // How long the rest is, the kind tells: a refusal has other digits than what was asked for.
    QByteArray bytes = received(device, LineHeadSize);
    if (bytes.size() == LineHeadSize)
        bytes += received(device, LineTailSize + (bytes.endsWith(LineRefusal) ? LineCodeDigits : digits));
    const LineReply reply = parsedLineReply(bytes);
    if (!reply.isIntact)
        return failAndClose(device, QString::fromLatin1("no valid reply: %1").arg(byteText(bytes)));
    if (reply.kind == LineRefusal)
        return fail(QString::fromLatin1("refused with code %1").arg(QString::fromLatin1(reply.digits)));
    if (reply.station != stationOf(device) || reply.kind != kind || reply.digits.size() != digits)
        return fail(QString::fromLatin1("unexpected reply: %1").arg(byteText(bytes)));
    answer = reply.digits;
    return true;
}

QString LineDriver::name()
{
    return QLatin1String("Line protocol");
}

QString LineDriver::vender()
{
    return QLatin1String("Example");
}

QString LineDriver::getVersionNumber()
{
    return QLatin1String("1.0.0");
}

int LineDriver::totalSize()
{
    return LastRegister;
}

int LineDriver::supportedCommunicationFlags()
{
    return 0x100;
}

int LineDriver::getBlockAccessSize()
{
    return MaxLineTransfer;
}

int LineDriver::getBitBlockAccessSize()
{
    return 0;
}

DeviceSetting *LineDriver::getDefaultSerialDeviceSetting()
{
    return new DeviceSetting(DefaultDeviceType, QLatin1String("COM1"), 9600, 8, 0, 2);
}

DriverSetting *LineDriver::getDefaultDriverSetting()
{
    return new DriverSetting(1000, 2, 1, 0);
}
