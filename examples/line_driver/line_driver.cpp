#include "line_driver.h"

#include "drivers/device_setting.h"
#include "drivers/driver_setting.h"
#include "drivers/tools.h"
#include "host/abstract_device_interface.h"
#include "line_frame.h"

namespace
{

const int LastRegister = 65536;

// Zero-based; the text is one that accepts() let through.
unsigned short firstRegister(const CommunicatorCommand &command)
{
    return static_cast<unsigned short>(ExtractPLCDeviceAddress(command.address, 10) - 1);
}

unsigned char stationOf(AbstractDeviceInterface *device)
{
    return static_cast<unsigned char>(device->stationId() & 0xFF);
}

QByteArray received(AbstractDeviceInterface *device, int size)
{
    QByteArray bytes(size, '\0');
    return bytes.left(device->readData(bytes.data(), size));
}

} // namespace

DRIVER_EXPORT_PLUGIN(line_driver, LineDriver)

extern "C" Q_DECL_EXPORT DriverInterface *CreateDriver()
{
    return new LineDriver;
}

LineDriver::LineDriver() : errorFlag(false) {}

QByteArray LineDriver::read(AbstractDeviceInterface *device, const CommunicatorCommand &command)
{
    QByteArray digits;
    if (!accepts(command))
        return digits;
    const QByteArray request =
        lineReadRequest(stationOf(device), firstRegister(command), static_cast<unsigned char>(command.count));
    transfer(device, request, LineRead, LineValueDigits * command.count, digits);
    return lineValues(digits);
}

bool LineDriver::write(AbstractDeviceInterface *device, const CommunicatorCommand &command,
                       const QByteArray &data)
{
    QByteArray nothing;
    return accepts(command) &&
           transfer(device,
                    lineWriteRequest(stationOf(device), firstRegister(command), ToSafeData(command, data)),
                    LineWrite, 0, nothing);
}

bool LineDriver::accepts(const CommunicatorCommand &command)
{
    if (!isWordCommand(command))
        return fail(QString::fromLatin1("unsupported data type: %1").arg(command.dataType));
    // A text that is no address gives 0, as does one that has no number.
    const int number = ExtractPLCDeviceAddress(command.address, 10);
    if (ExtractPrefixSymbol(command.address).toUpper() != "D" || number < 1 || number > LastRegister)
        return fail(QString::fromLatin1("invalid address: %1").arg(command.address));
    if (command.count < 1 || command.count > MaxLineTransfer || number + command.count - 1 > LastRegister)
        return fail(
            QString::fromLatin1("can't transfer %1 words at %2").arg(command.count).arg(command.address));
    return true;
}

// Repeats a failed exchange as often as the channel says.
bool LineDriver::transfer(AbstractDeviceInterface *device, const QByteArray &request, char kind, int digits,
                          QByteArray &answer)
{
    for (int attempt = 0;; ++attempt) {
        HRSleep(device->delayTime());
        errorFlag = false;
        if (!device->isConnected() && !device->open())
            fail(device->errorString());
        else if (exchange(device, request, kind, digits, answer))
            return true;
        if (attempt >= device->retryCount())
            return false;
    }
}

bool LineDriver::exchange(AbstractDeviceInterface *device, const QByteArray &request, char kind, int digits,
                          QByteArray &answer)
{
    if (device->writeData(request.constData(), request.size()) != request.size()) {
        fail(device->errorString());
        device->close();
        return false;
    }
    // The kind says how long the rest is: a refusal has other digits than what was asked for.
    QByteArray bytes = received(device, LineHeadSize);
    if (bytes.size() == LineHeadSize)
        bytes += received(device, LineTailSize + (bytes.endsWith(LineRefusal) ? LineCodeDigits : digits));
    const LineReply reply = parsedLineReply(bytes);
    if (!reply.isIntact) {
        device->close();
        return fail(QString::fromLatin1("no valid reply: %1").arg(dumpByteArray(bytes)));
    }
    if (reply.kind == LineRefusal)
        return fail(QString::fromLatin1("refused with code %1").arg(QString::fromLatin1(reply.digits)));
    if (reply.station != stationOf(device) || reply.kind != kind || reply.digits.size() != digits)
        return fail(QString::fromLatin1("unexpected reply: %1").arg(dumpByteArray(bytes)));
    answer = reply.digits;
    return true;
}

bool LineDriver::fail(const QString &text)
{
    errorFlag = true;
    lastError = text;
    return false;
}

bool LineDriver::hasError()
{
    return errorFlag;
}

QString LineDriver::getLastError()
{
    return lastError;
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

DeviceSetting *LineDriver::getDefaultSerialDeviceSetting()
{
    return new DeviceSetting(DefaultDeviceType, QLatin1String("COM1"), 9600, 8, 0, 2);
}

DriverSetting *LineDriver::getDefaultDriverSetting()
{
    return new DriverSetting(1000, 2, 1, 0);
}

int LineDriver::getBlockAccessSize()
{
    return MaxLineTransfer;
}

int LineDriver::getBitBlockAccessSize()
{
    return 0;
}

int LineDriver::totalSize()
{
    return LastRegister;
}

bool LineDriver::initialize(AbstractDeviceInterface * /*device*/)
{
    return true;
}

bool LineDriver::validation(const QString & /*address*/)
{
    return false;
}

int LineDriver::supportedCommunicationFlags()
{
    return 0x100;
}

void LineDriver::setDebugMode(bool /*on*/) {}

QObject *LineDriver::getThisObject()
{
    return this;
}
