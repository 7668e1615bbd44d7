#include "drivers/tools/timing.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <ctime>

void HRSleep(unsigned long milliseconds)
{
    const quint32 nanoseconds = static_cast<quint32>(milliseconds) * 1000000u;
    if (nanoseconds == 0)
        return;
    timespec left;
    left.tv_sec = static_cast<time_t>(nanoseconds / 1000000000u);
    left.tv_nsec = static_cast<long>(nanoseconds % 1000000000u);
    while (nanosleep(&left, &left) == -1 && errno == EINTR) {
    }
}

qint64 CurrentMSecsSinceBoot()
{
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return qint64(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

bool ProcessIsRunning(qint64 pid)
{
    const auto id = static_cast<pid_t>(pid);
    return id == pid && (kill(id, 0) == 0 || errno == EPERM);
}

QString dumpByteArray(const QByteArray &bytes)
{
    QString text = QLatin1String("(");
    for (int i = 0; i < bytes.size(); ++i)
        text += QLatin1String("0X") + QString::number(static_cast<unsigned char>(bytes.at(i)), 16) +
                QLatin1Char(' ');
    // Raw data that the array only refers to has no zero byte at its end.
    const uint length = qstrnlen(bytes.constData(), static_cast<uint>(bytes.size()));
    return text + QLatin1String(") : ") + QString::fromLatin1(bytes.constData(), static_cast<int>(length));
}

QByteArray reverseArray(const QByteArray &bytes)
{
    QByteArray reversed = bytes;
    std::reverse(reversed.begin(), reversed.end());
    return reversed;
}

QList<int> EmptyPackageSizeList()
{
    return QList<int>();
}
