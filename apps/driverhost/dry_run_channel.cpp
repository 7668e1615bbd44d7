#include "dry_run_channel.h"

#include "trace_frame.h"

#include <algorithm>

namespace
{

const int EchoSize = 6; // station, function, two fields; the CRC follows
const int HighestRead = 4;

QByteArray replyTo(const QByteArray &request)
{
    const quint8 function = byteAt(request, 1);
    if (function > HighestRead)
        return withCrc(request.left(EchoSize));
    const int byteBits = 8;
    const int quantity = wordAt(request, 4);
    const int size = function <= 2 ? (quantity + byteBits - 1) / byteBits : quantity * 2;
    QByteArray reply = request.left(2);
    reply += static_cast<char>(size);
    return withCrc(reply + QByteArray(size, '\0'));
}

} // namespace

DryRunChannel::DryRunChannel(int station, const QString &device)
    : m_station(station), m_device(DefaultDeviceType, device, 9600, 8, 0, 2)
{
}

int DryRunChannel::readData(char *buffer, int maxLength)
{
    const int size = std::min(maxLength, m_reply.size());
    std::copy_n(m_reply.constData(), size, buffer);
    m_reply.remove(0, size);
    return size;
}

int DryRunChannel::writeData(const char *data, int length)
{
    const QByteArray request(data, length);
    m_requests.push_back(request);
    m_reply = replyTo(request);
    return length;
}
