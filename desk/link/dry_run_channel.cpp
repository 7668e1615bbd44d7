#include "desk/link/dry_run_channel.h"

#include "desk/wire/rtu_frame.h"
#include "drivers/qt/qt_lines.h"

#include <algorithm>

namespace
{

QByteArray replyTo(const QByteArray &request)
{
    const int size = replySizeFor(request) - modbus::CrcSize;
    if (!modbus::isRead(functionOf(request)))
        return withCrc(request.left(size));
    const int headSize = 3;
    const QByteArray head = request.left(2) + static_cast<char>(size - headSize);
    return withCrc(head + QByteArray(size - headSize, '\0'));
}

} // namespace

DryRunChannel::DryRunChannel(int station, const QString &device)
    : m_station(station), m_device(DefaultDeviceType, device, 9600, 8, 0, 2)
{
}

int DryRunChannel::readData(char *buffer, int maxLength)
{
    const int size = std::min(maxLength, sizeOf(m_reply));
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
