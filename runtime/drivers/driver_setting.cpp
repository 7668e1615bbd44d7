#include "drivers/driver_setting.h"

#include <QDataStream>
#include <QDebug>

DriverSetting::DriverSetting() : DriverSetting(0, 0, 0, 0) {}

DriverSetting::DriverSetting(int timeoutMs, int retries, int station, int delayMs)
    : timeout(timeoutMs), retry(retries), stationId(station), delay(delayMs), auxFlag(false)
{
}

DriverSetting::DriverSetting(int timeoutMs, int retries, int station, int delayMs,
                             const QString & /*ignored*/, unsigned short /*ignored*/)
    : DriverSetting(timeoutMs, retries, station, delayMs)
{
}

DriverSetting::DriverSetting(int timeoutMs, int retries, int station, int delayMs,
                             const QString & /*ignored*/, unsigned short /*ignored*/, const QString &text,
                             bool flag)
    : timeout(timeoutMs), retry(retries), stationId(station), delay(delayMs), auxText(text), auxFlag(flag)
{
}

void DriverSetting::copy(const DriverSetting &other)
{
    timeout = other.timeout;
    retry = other.retry;
    stationId = other.stationId;
    delay = other.delay;
    auxText = other.auxText;
}

void DriverSetting::dump() const
{
    qDebug() << "timeout:" << timeout << "retry:" << retry << "stationid:" << stationId << "delay:" << delay;
}

QDataStream &operator<<(QDataStream &stream, const DriverSetting &setting)
{
    return stream << qint32(setting.timeout) << qint32(setting.retry) << qint32(setting.stationId)
                  << qint32(setting.delay);
}

QDataStream &operator>>(QDataStream &stream, DriverSetting &setting)
{
    return stream >> setting.timeout >> setting.retry >> setting.stationId >> setting.delay;
}
