#include "bench/tcp/channel.h"

#include <cstring>

TcpChannel::TcpChannel(int port) : socket(Socket::connectedTo(port))
{
    setting.deviceString = QStringLiteral("COM1");
}

int TcpChannel::writeData(const char *data, int length)
{
    start = 0;
    end = 0;
    socket.send(data, length);
    return length;
}

int TcpChannel::readData(char *bytes, int maxLength)
{
    while (end - start < maxLength) {
        const int more = socket.receive(buffer + end, static_cast<int>(sizeof buffer) - end);
        if (more == 0)
            break;
        end += more;
    }
    const int count = qMin(maxLength, end - start);
    std::memcpy(bytes, buffer + start, static_cast<size_t>(count));
    start += count;
    return count;
}
