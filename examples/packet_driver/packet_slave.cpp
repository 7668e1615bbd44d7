#include "drivers/qt_lines.h"
#include "kit/program/conformance.h"

#include <map>

/// What the kit has to know to try the packet driver: a device to talk to. It differs nowhere.

namespace
{

const int HeadSize = 6; // length, sequence, station, operation
const int CheckSize = 2;

QByteArray bigEndian(unsigned int number, int size)
{
    QByteArray bytes(size, '\0');
    for (int i = size - 1; i >= 0; --i, number >>= 8)
        bytes[i] = static_cast<char>(number & 0xFF);
    return bytes;
}

unsigned int numberAt(const QByteArray &bytes, int place, int size)
{
    unsigned int number = 0;
    for (int i = 0; i < size; ++i)
        number = number << 8 | static_cast<unsigned char>(bytes.at(place + i));
    return number;
}

// Bit by bit, not with the driver's table.
QByteArray checkOf(const QByteArray &bytes)
{
    unsigned int crc = 0xFFFF;
    for (int i = 0; i < bytes.size(); ++i) {
        crc ^= static_cast<unsigned int>(static_cast<unsigned char>(bytes.at(i))) << 8;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x8000) != 0 ? (crc << 1 ^ 0x1021) & 0xFFFF : crc << 1;
    }
    return bigEndian(crc, CheckSize);
}

// The answer with the sequence and the station of the request.
QByteArray answerTo(const QByteArray &request, unsigned int operation, const QByteArray &content)
{
    const int length = HeadSize - 2 + sizeOf(content) + CheckSize;
    const QByteArray bytes = bigEndian(static_cast<unsigned int>(length), 2) + request.mid(2, 3) +
                             bigEndian(operation, 1) + content;
    return bytes + checkOf(bytes);
}

class PacketSlave : public kit::Subject
{
public:
    kit::Samples samples() const override
    {
        const QByteArray eight = QByteArray::fromHex("0123456789ABCDEF");
        return {kit::readOf(WordItem, QLatin1String("M256"), 2, QByteArray::fromHex("00010203")),
                kit::readOf(ByteItem, QLatin1String("M0"), 1, QByteArray(1, '\0')),
                kit::readOf(BlockItem, QLatin1String("m300"), 7),
                kit::readOf(DoubleWordItem, QLatin1String("M16777208"), 2),
                kit::writeOf(WordItem, QLatin1String("M1000"), 4, eight),
                kit::writeOf(ByteItem, QLatin1String("M1001"), 3, eight.left(3)),
                kit::writeOf(DoubleWordItem, QLatin1String("M1100"), 1, eight.left(4))};
    }

    QByteArray reply(const QByteArray &request) override
    {
        const int end = sizeOf(request) - CheckSize;
        if (end < HeadSize + 4 || checkOf(request.left(end)) != request.mid(end) ||
            static_cast<int>(numberAt(request, 0, 2)) != request.size() - 2)
            return QByteArray();
        const unsigned int address = numberAt(request, HeadSize, 4);
        if (request.at(5) == 1)
            return answerTo(request, 0x81, bytesAt(address, numberAt(request, HeadSize + 4, 2)));
        for (int i = HeadSize + 4; i < end; ++i)
            memory[address + static_cast<unsigned int>(i - HeadSize - 4)] = request.at(i);
        return answerTo(request, 0x82, QByteArray());
    }

    QByteArray refusal(const QByteArray &request) override
    {
        return answerTo(request, 0xFF, QByteArray(1, '\x04'));
    }

    std::vector<CommunicatorCommand> refused() const override
    {
        return {kit::makeCommand(BitItem, QLatin1String("M1"), 1),
                kit::makeCommand(EightByteItem, QLatin1String("M1"), 1),
                kit::makeCommand(ByteItem, QLatin1String("M16777216"), 1),
                kit::makeCommand(WordItem, QLatin1String("M16777215"), 1),
                kit::makeCommand(WordItem, QLatin1String("M1"), 0),
                kit::makeCommand(WordItem, QLatin1String("M1"), 513),
                kit::makeCommand(WordItem, QLatin1String("M1.0"), 1)};
    }

private:
    // A byte that nobody wrote holds the low byte of its address.
    QByteArray bytesAt(unsigned int address, unsigned int count) const
    {
        QByteArray bytes;
        for (unsigned int i = address; i < address + count; ++i) {
            const auto written = memory.find(i);
            bytes += written == memory.end() ? static_cast<char>(i & 0xFF) : written->second;
        }
        return bytes;
    }

    std::map<unsigned int, char> memory;
};

} // namespace

DRIVER_CONFORMANCE_SUBJECT(PacketSlave)
