#include "packet.h"

#include "drivers/qt_lines.h"
#include "drivers/tools.h"

namespace
{

const int CheckSize = 2;
const int ContentStart = 6;

// The check of the frame as it is sent.
QByteArray checkOf(const QByteArray &bytes)
{
    unsigned short crc = 0xFFFF;
    for (int i = 0; i < bytes.size(); ++i)
        crc = update_crc_ccitt(crc, bytes.at(i));
    return ByteArrayPack("n", static_cast<int>(crc));
}

} // namespace

QByteArray packetBytes(const Packet &packet)
{
    const int length = EmptyPacketSize - PacketLengthSize + sizeOf(packet.content);
    const QByteArray head =
        ByteArrayPack("nnCC", length, static_cast<int>(packet.sequence), static_cast<int>(packet.station),
                      static_cast<int>(packet.operation));
    const QByteArray bytes = head + packet.content;
    return bytes + checkOf(bytes);
}

QByteArray readContent(unsigned int address, unsigned short count)
{
    return ByteArrayPack("Nn", static_cast<int>(address), static_cast<int>(count));
}

QByteArray writeContent(unsigned int address, const QByteArray &bytes)
{
    return ByteArrayPack("N", static_cast<int>(address)) + bytes;
}

int packetSize(const QByteArray &begin)
{
    if (begin.size() < PacketLengthSize)
        return 0;
    unsigned short length = 0;
    DataUnpack(reinterpret_cast<const unsigned char *>(begin.constData()), "n", &length);
    return PacketLengthSize + length;
}

bool parsePacket(const QByteArray &bytes, Packet &packet)
{
    if (bytes.size() < EmptyPacketSize || packetSize(bytes) != bytes.size() ||
        checkOf(bytes.left(bytes.size() - CheckSize)) != bytes.right(CheckSize))
        return false;
    DataUnpack(reinterpret_cast<const unsigned char *>(bytes.constData()), "xxnCC", &packet.sequence,
               &packet.station, &packet.operation);
    packet.content = bytes.mid(ContentStart, bytes.size() - EmptyPacketSize);
    return true;
}
