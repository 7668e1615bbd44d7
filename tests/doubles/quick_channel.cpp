#include "tests/doubles/quick_channel.h"

#include <algorithm>
#include <cstring>

namespace
{

struct CrcTable {
    CrcTable()
    {
        for (unsigned int byte = 0; byte < 256; ++byte) {
            unsigned int rest = byte;
            for (int bit = 0; bit < 8; ++bit)
                rest = (rest & 1u) != 0 ? (rest >> 1) ^ 0xA001u : rest >> 1;
            entries[byte] = static_cast<unsigned short>(rest);
        }
    }

    unsigned short entries[256];
};

const CrcTable table;

} // namespace

unsigned int quickCrc(const unsigned char *bytes, int size)
{
    unsigned int crc = 0xFFFF;
    for (int i = 0; i < size; ++i)
        crc = crc >> 8 ^ table.entries[(crc ^ bytes[i]) & 0xFFu];
    return crc;
}

void closeFrame(QuickChannel::Frame &frame, int size)
{
    const unsigned int crc = quickCrc(frame.bytes, size);
    frame.bytes[size] = static_cast<unsigned char>(crc & 0xFFu);
    frame.bytes[size + 1] = static_cast<unsigned char>(crc >> 8);
    frame.size = size + 2;
}

QuickChannel::QuickChannel() : frames(1), sentFrames(0), incoming(), taken(0), closes(0)
{
    setting.deviceString = QLatin1String("ETHERNET");
}

void QuickChannel::start()
{
    sentFrames = 0;
    closes = 0;
}

int QuickChannel::readData(char *buffer, int maxLength)
{
    const int size = std::min(maxLength, incoming.size - taken);
    std::memcpy(buffer, incoming.bytes + taken, static_cast<size_t>(size));
    taken += size;
    return size;
}

int QuickChannel::writeData(const char *data, int length)
{
    if (sentFrames == frames.size())
        frames.resize(2 * frames.size());
    Frame &frame = frames[sentFrames++];
    frame.size = std::min(length, static_cast<int>(sizeof frame.bytes));
    std::memcpy(frame.bytes, data, static_cast<size_t>(frame.size));
    taken = 0;
    answer(frame);
    return length;
}

bool QuickChannel::open()
{
    return true;
}

void QuickChannel::close()
{
    ++closes;
}

DeviceSetting *QuickChannel::deviceSetting() const
{
    return &setting;
}

bool QuickChannel::isConnected() const
{
    return true;
}

int QuickChannel::retryCount() const
{
    return 0;
}

int QuickChannel::stationId() const
{
    return 1;
}

unsigned int QuickChannel::delayTime() const
{
    return 0;
}

QString QuickChannel::errorString() const
{
    return QString();
}

void ZerosChannel::answer(const Frame &request)
{
    Frame &frame = reply();
    const int function = request.bytes[1];
    std::memcpy(frame.bytes, request.bytes, 6);
    if (function > 4) {
        closeFrame(frame, 6);
        return;
    }
    const int quantity = request.bytes[4] * 256 + request.bytes[5];
    const int size = function < 3 ? (quantity + 7) / 8 : 2 * quantity;
    const int room = static_cast<int>(sizeof frame.bytes) - 5;
    const int fitting = std::min(size, room);
    frame.bytes[2] = static_cast<unsigned char>(size & 0xFF);
    std::memset(frame.bytes + 3, 0, static_cast<size_t>(fitting));
    closeFrame(frame, 3 + fitting);
}

void FixedReplyChannel::answer(const Frame & /*request*/)
{
    reply() = fixed;
}
