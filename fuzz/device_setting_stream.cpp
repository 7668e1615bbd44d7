// Streams of DeviceSetting: read field by field, into an object that held some sockets before, and written
// back.

#include "drivers/device_setting.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"

#include <QDataStream>

using namespace fuzz;

namespace
{

using Sockets = QList<QPair<QString, quint16>>;

struct Fields {
    qint32 type = 0;
    QString device;
    qint32 baudrate = 0, databits = 0, stopbits = 0, parity = 0, auxValue = 0, linkId = 0, index = 0;
    Sockets sockets;
};

// As Qt reads a list: with a status of its own, dropped whole when it ends too early. False for a count that
// the stream cannot hold: Qt makes room for all of it before it looks.
bool readSockets(QDataStream &stream, Sockets &sockets)
{
    const QDataStream::Status before = stream.status();
    stream.resetStatus();
    quint32 count = 0;
    stream >> count;
    if (count > stream.device()->bytesAvailable())
        return false;
    for (quint32 i = 0; i < count && stream.status() == QDataStream::Ok; ++i) {
        QPair<QString, quint16> socket;
        stream >> socket.first >> socket.second;
        sockets.append(socket);
    }
    if (stream.status() != QDataStream::Ok)
        sockets.clear();
    if (before != QDataStream::Ok) {
        stream.resetStatus();
        stream.setStatus(before);
    }
    return true;
}

bool readFields(QDataStream &stream, Fields &fields)
{
    stream >> fields.type >> fields.device >> fields.baudrate >> fields.databits >> fields.stopbits >>
        fields.parity >> fields.auxValue >> fields.linkId >> fields.index;
    return readSockets(stream, fields.sockets);
}

DeviceSetting settingWithSockets(int count)
{
    DeviceSetting setting(DefaultDeviceType, QStringLiteral("COM2"), 9600, 8, 0, 2, 5,
                          QStringLiteral("kept"));
    for (int i = 0; i < count; ++i)
        setting.sockets.append({QStringLiteral("old"), quint16(i)});
    return setting;
}

void checkSockets(DeviceSetting &setting, int index)
{
    const int current = index == -1 ? setting.currentIpIndex : index;
    const bool isThere = current >= 0 && current < setting.sockets.size();
    const Sockets before = setting.sockets;
    FUZZ_CHECK(setting.socketIP(index) == (isThere ? before.at(current).first : QString()));
    FUZZ_CHECK(setting.port(index) == (isThere ? before.at(current).second : 0));
    setting.setSocketIP(QStringLiteral("new"), index);
    setting.setPort(1, index);
    FUZZ_CHECK(setting.sockets.size() == before.size());
    FUZZ_CHECK(isThere ? setting.sockets.at(current) == qMakePair(QStringLiteral("new"), quint16(1))
                       : setting.sockets == before);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Input input(data, size);
    const auto order = input.byte() % 2 == 0 ? QDataStream::BigEndian : QDataStream::LittleEndian;
    const int socketsBefore = input.byte() % 4;
    const int index = input.signedByte();
    const QByteArray bytes = input.rest();

    Fields fields;
    QDataStream plain(bytes);
    plain.setByteOrder(order);
    if (!readFields(plain, fields))
        return 0;

    DeviceSetting setting = settingWithSockets(socketsBefore);
    QDataStream stream(bytes);
    stream.setByteOrder(order);
    stream >> setting;
    FUZZ_CHECK(stream.status() == plain.status());
    FUZZ_CHECK(setting.type == fields.type && setting.deviceString == fields.device);
    FUZZ_CHECK(setting.baudrate == fields.baudrate && setting.databits == fields.databits);
    FUZZ_CHECK(setting.stopbits == fields.stopbits && setting.parity == fields.parity);
    FUZZ_CHECK(setting.auxValue == fields.auxValue && setting.linkId == fields.linkId);
    FUZZ_CHECK(setting.auxText == QLatin1String("kept") && setting.sockets == fields.sockets);
    const bool isIndexTaken = fields.index >= 0 && fields.index < socketsBefore;
    FUZZ_CHECK(setting.currentIpIndex == (isIndexTaken ? fields.index : 0));

    QByteArray written;
    QDataStream out(&written, QIODevice::WriteOnly);
    out.setByteOrder(order);
    out << setting;
    DeviceSetting again;
    QDataStream back(written);
    back.setByteOrder(order);
    back >> again;
    FUZZ_CHECK(back.status() == QDataStream::Ok && back.atEnd());
    FUZZ_CHECK(again.deviceString == setting.deviceString && again.linkId == setting.linkId);
    FUZZ_CHECK(again.sockets == setting.sockets && again.currentIpIndex == 0);

    checkSockets(setting, index);
    setting.dump();
    return 0;
}
