#include "drivers/device_setting.h"

#include "drivers/qt_lines.h"

DeviceSetting::DeviceSetting() : DeviceSetting(static_cast<device_type>(0), QString(), 0, 0, 0, 0) {}

DeviceSetting::DeviceSetting(device_type kind, const QString &device, int baud, int dataBits, int stopBits,
                             int parityCode)
    : DeviceSetting(kind, device, baud, dataBits, stopBits, parityCode, 0, QString())
{
}

DeviceSetting::DeviceSetting(device_type kind, const QString &device, int baud, int dataBits, int stopBits,
                             int parityCode, int value, const QString &text)
    : type(kind),
      deviceString(device),
      baudrate(baud),
      databits(dataBits),
      stopbits(stopBits),
      parity(parityCode),
      auxValue(value),
      auxText(text),
      linkId(-1),
      currentIpIndex(0)
{
}

QString DeviceSetting::socketIP(int index) const
{
    return sockets.value(index == -1 ? currentIpIndex : index).first;
}

unsigned short DeviceSetting::port(int index) const
{
    return sockets.value(index == -1 ? currentIpIndex : index).second;
}

QPair<QString, quint16> *DeviceSetting::socketAt(int index)
{
    const int wanted = index == -1 ? currentIpIndex : index;
    return wanted >= 0 && wanted < sockets.size() ? &sockets[wanted] : nullptr;
}

void DeviceSetting::setSocketIP(const QString &ip, int index)
{
    if (QPair<QString, quint16> *socket = socketAt(index))
        socket->first = ip;
}

void DeviceSetting::setPort(unsigned short number, int index)
{
    if (QPair<QString, quint16> *socket = socketAt(index))
        socket->second = number;
}

void DeviceSetting::setCurrentIPIndex(int index)
{
    if (index >= 0 && index < sockets.size())
        currentIpIndex = index;
}

void DeviceSetting::setSocketData(const QList<QPair<QString, QString>> &data)
{
    QList<QPair<QString, quint16>> fresh;
    for (int i = 0; i < data.size(); ++i)
        fresh.append(qMakePair(data.at(i).first, quint16(data.at(i).second.toUShort())));
    sockets = fresh;
}

void DeviceSetting::dump() const
{
    plainDebug() << "type:" << static_cast<int>(type) << "string:" << quoted(deviceString)
                 << "baudrate:" << baudrate << "databits:" << databits << "stopbits:" << stopbits
                 << "parity:" << parity << "linkID:" << linkId << "current ip:" << quoted(socketIP(-1))
                 << "current port:" << port(-1);
}

QDataStream &operator<<(QDataStream &stream, const DeviceSetting &setting)
{
    stream << qint32(setting.type) << setting.deviceString << qint32(setting.baudrate)
           << qint32(setting.databits) << qint32(setting.stopbits) << qint32(setting.parity)
           << qint32(setting.auxValue) << qint32(setting.linkId) << qint32(setting.currentIpIndex);
    return stream << setting.sockets;
}

QDataStream &operator>>(QDataStream &stream, DeviceSetting &setting)
{
    qint32 type = setting.type;
    qint32 index = -1;
    stream >> type >> setting.deviceString >> setting.baudrate >> setting.databits >> setting.stopbits >>
        setting.parity >> setting.auxValue >> setting.linkId >> index;
    setting.type = static_cast<device_type>(type);
    setting.setCurrentIPIndex(index);

    QList<QPair<QString, quint16>> sockets;
    readItemByItem(stream, sockets);
    setting.sockets = sockets;
    return stream;
}
