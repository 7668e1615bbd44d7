#include "bench/support/canned_channel.h"

#include "bench/support/filled_slave.h"
#include "tests/doubles/frames.h"

#include <cstring>

namespace
{

const int HeaderSize = 6; // station, function, two words

QByteArray answer(const QByteArray &request)
{
    static ModelSlave slave = filledSlave();
    slave.station = byteAt(request, 0);
    return slave.answer(request);
}

} // namespace

CannedChannel::CannedChannel(const QString &port)
{
    setting.deviceString = port;
}

int CannedChannel::writeData(const char *data, int length)
{
    quint64 key = 0;
    std::memcpy(&key, data, HeaderSize);
    QByteArray &known = replies[key];
    if (known.isEmpty())
        known = answer(QByteArray(data, length));
    reply = &known;
    position = 0;
    ++requests;
    items += static_cast<unsigned char>(data[4]) << 8 | static_cast<unsigned char>(data[5]);
    return length;
}

int CannedChannel::readData(char *buffer, int maxLength)
{
    const int count = qMin(maxLength, reply->size() - position);
    std::memcpy(buffer, reply->constData() + position, static_cast<size_t>(count));
    position += count;
    return count;
}
