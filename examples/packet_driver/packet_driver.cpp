#include "packet_driver.h"

#include "drivers/device_setting.h"
#include "drivers/driver_setting.h"
#include "drivers/tools.h"
#include "sdk/address_number.h"
#include "sdk/byte_text.h"

namespace
{

const int MemorySize = 1 << 24;

// The text is one that accepts() let through.
unsigned int firstByte(const CommunicatorCommand &command)
{
    return static_cast<unsigned int>(addressNumber(command.address, "M"));
}

bool isOfBytes(const CommunicatorCommand &command)
{
    return isByteCommand(command) || isBlockCommand(command) || isWordCommand(command) ||
           isDoubleWordCommand(command);
}

} // namespace

DRIVER_EXPORT_PLUGIN(packet_driver, PacketDriver)

extern "C" Q_DECL_EXPORT DriverInterface *CreateDriver()
{
    return new PacketDriver;
}

PacketDriver::PacketDriver() : m_sequence(0) {}

QByteArray PacketDriver::read(AbstractDeviceInterface *device, const CommunicatorCommand &command)
{
    QByteArray bytes;
    if (!accepts(command))
        return bytes;
    const int size = GetSafeDataLen(command);
    const QByteArray content = readContent(firstByte(command), static_cast<unsigned short>(size));
    attempt(device, [&]() { return exchange(device, ReadMemory, content, size, bytes); });
    return bytes;
}

bool PacketDriver::write(AbstractDeviceInterface *device, const CommunicatorCommand &command,
                         const QByteArray &data)
{
    if (!accepts(command))
        return false;
    const QByteArray content = writeContent(firstByte(command), ToSafeData(command, data));
    QByteArray nothing;
    return attempt(device, [&]() { return exchange(device, WriteMemory, content, 0, nothing); });
}

bool PacketDriver::accepts(const CommunicatorCommand &command)
{
    if (!isOfBytes(command))
        return fail(QString::fromLatin1("unsupported data type: %1").arg(command.dataType));
    const int first = addressNumber(command.address, "M");
    if (first < 0 || first >= MemorySize)
        return fail(QString::fromLatin1("invalid address: %1").arg(command.address));
    const int size = GetSafeDataLen(command);
    if (size < 1 || size > MaxPacketTransfer || first + size > MemorySize)
        return fail(
            QString::fromLatin1("can't transfer %1 items at %2").arg(command.count).arg(command.address));
    return true;
}

// Every attempt has a number of its own, so that a reply which comes too late answers no later one.
bool PacketDriver::exchange(AbstractDeviceInterface *device, PacketOperation operation,
                            const QByteArray &content, int size, QByteArray &answer)
{
    const Packet request = {++m_sequence, stationOf(device), operation, content};
    if (!send(device, packetBytes(request)))
        return false;

    QByteArray bytes = received(device, PacketLengthSize);
    const int whole = packetSize(bytes);
    // A length that no answer can have would make the channel wait for bytes that do not come.
    if (whole == EmptyPacketSize + size || whole == EmptyPacketSize + RefusalContentSize)
        bytes += received(device, whole - PacketLengthSize);
    Packet reply = {0, 0, 0, QByteArray()};
    if (!parsePacket(bytes, reply))
        return failAndClose(device, QString::fromLatin1("no valid reply: %1").arg(byteText(bytes)));
    if (!judge(reply, request, size))
        return false;
    answer = reply.content;
    return true;
}

// Whether an intact answer is that to the request.
bool PacketDriver::judge(const Packet &answer, const Packet &request, int size)
{
    if (answer.sequence != request.sequence || answer.station != request.station)
        return fail(QString::fromLatin1("reply to request %1 of station %2 instead of %3 of station %4")
                        .arg(answer.sequence)
                        .arg(answer.station)
                        .arg(request.sequence)
                        .arg(request.station));
    if (answer.operation == Refusal && answer.content.size() == RefusalContentSize)
        return fail(QString::fromLatin1("refused with code %1").arg(TxPackage::arrayToInt(answer.content)));
    if (answer.operation != (request.operation | AnswerFlag) || answer.content.size() != size)
        return fail(QString::fromLatin1("reply of operation %1 with %2 bytes")
                        .arg(answer.operation)
                        .arg(answer.content.size()));
    return true;
}

QString PacketDriver::name()
{
    return QLatin1String("Packet protocol");
}

QString PacketDriver::vender()
{
    return QLatin1String("Example");
}

QString PacketDriver::getVersionNumber()
{
    return QLatin1String("1.0.0");
}

int PacketDriver::totalSize()
{
    return MemorySize;
}

int PacketDriver::supportedCommunicationFlags()
{
    return 0x100;
}

// A word has two bytes.
int PacketDriver::getBlockAccessSize()
{
    return MaxPacketTransfer / 2;
}

int PacketDriver::getBitBlockAccessSize()
{
    return 0;
}

DeviceSetting *PacketDriver::getDefaultSerialDeviceSetting()
{
    return new DeviceSetting(DefaultDeviceType, QLatin1String("ETHERNET"), 9600, 8, 0, 0);
}

DriverSetting *PacketDriver::getDefaultDriverSetting()
{
    return new DriverSetting(1000, 2, 1, 0);
}
