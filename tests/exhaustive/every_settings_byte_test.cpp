// A good stream of settings with each byte in turn replaced by each value, and cut anywhere: what comes of it
// is what Qt's own readers make of the fields one by one.

#include "drivers/device_setting.h"
#include "drivers/driver_setting.h"
#include "tests/doubles/frames.h"
#include "tests/support/gtest_qt.h"

#include <QBuffer>
#include <QDataStream>

namespace
{

typedef QPair<QString, quint16> Socket;

// Everything that reading a record can leave behind.
struct Outcome {
    QList<qint32> numbers;
    QString text;
    QList<Socket> sockets;
    int status;
    qint64 position;
};

bool operator==(const Outcome &a, const Outcome &b)
{
    return a.numbers == b.numbers && a.text == b.text && a.text.isNull() == b.text.isNull() &&
           a.sockets == b.sockets && a.status == b.status && a.position == b.position;
}

DeviceSetting someSetting()
{
    DeviceSetting setting(DefaultDeviceType, QLatin1String("COM2"), 9600, 8, 0, 2, 5, QString());
    setting.linkId = -2;
    setting.sockets << Socket(QString::fromUtf8("a\xC3\xA4\xE2\x82\xAC"), quint16(502))
                    << Socket(QString(), quint16(65535)) << Socket(QLatin1String("10.0.0.1"), quint16(1));
    setting.currentIpIndex = 2;
    return setting;
}

DriverSetting someTiming()
{
    return DriverSetting(3000, 3, 1, -1);
}

template <typename Record>
QByteArray written(const Record &record)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_4_8);
    stream << record;
    return bytes;
}

template <typename Reader>
Outcome outcomeOf(const QByteArray &bytes, const Reader &read)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QDataStream stream(&buffer);
    stream.setVersion(QDataStream::Qt_4_8);
    Outcome outcome = read(stream);
    outcome.status = stream.status();
    outcome.position = buffer.pos();
    return outcome;
}

Outcome deviceByTheRecord(QDataStream &stream)
{
    DeviceSetting setting = someSetting();
    stream >> setting;
    const QList<qint32> numbers = QList<qint32>() << setting.type << setting.baudrate << setting.databits
                                                  << setting.stopbits << setting.parity << setting.auxValue
                                                  << setting.linkId << setting.currentIpIndex;
    return {numbers, setting.deviceString, setting.sockets, 0, 0};
}

// Field by field. The index counts when the list before had such an entry, which it had three of.
Outcome deviceByTheFields(QDataStream &stream)
{
    Outcome outcome = {};
    qint32 type = 0;
    qint32 numbers[6] = {};
    qint32 index = -1;
    stream >> type >> outcome.text;
    for (qint32 &number : numbers)
        stream >> number;
    stream >> index >> outcome.sockets;
    outcome.numbers << type;
    for (const qint32 number : numbers)
        outcome.numbers << number;
    outcome.numbers << (index >= 0 && index < 3 ? index : 2);
    return outcome;
}

Outcome timingByTheRecord(QDataStream &stream)
{
    DriverSetting setting = someTiming();
    stream >> setting;
    return {QList<qint32>() << setting.timeout << setting.retry << setting.stationId << setting.delay,
            QString(), QList<Socket>(), 0, 0};
}

Outcome timingByTheFields(QDataStream &stream)
{
    Outcome outcome = {};
    for (int i = 0; i < 4; ++i) {
        qint32 number = 0;
        stream >> number;
        outcome.numbers << number;
    }
    return outcome;
}

// A list that announces many entries makes Qt take memory for them, and is left to DeviceSettingStream.
bool announcesMany(const QByteArray &bytes)
{
    const int textSize = wordAt(bytes, 6);
    const int listAt = 4 + 4 + (textSize % 2 == 0 ? textSize : 0) + 7 * 4;
    return byteAt(bytes, 4) == 0 && byteAt(bytes, 5) == 0 && listAt + 4 <= bytes.size() &&
           (byteAt(bytes, listAt) != 0 || byteAt(bytes, listAt + 1) != 0);
}

template <typename Reader, typename Oracle>
void checkEveryByte(const QByteArray &good, const Reader &read, const Oracle &expected)
{
    for (int place = 0; place < good.size(); ++place)
        for (int value = 0; value < 256; ++value) {
            QByteArray bytes = good;
            bytes[place] = static_cast<char>(value);
            if (announcesMany(bytes))
                continue;
            for (const QByteArray &stream : {bytes, bytes.left(place + 1)})
                ASSERT_TRUE(outcomeOf(stream, read) == outcomeOf(stream, expected)) << toHex(stream);
        }
}

} // namespace

TEST(EverySettingsByte, OfADevice)
{
    checkEveryByte(written(someSetting()), deviceByTheRecord, deviceByTheFields);
}

TEST(EverySettingsByte, OfADriver)
{
    checkEveryByte(written(someTiming()), timingByTheRecord, timingByTheFields);
}
