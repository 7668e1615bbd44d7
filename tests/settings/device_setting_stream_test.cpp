#include "drivers/device_setting.h"
#include "drivers/qt/qt_lines.h"
#include "tests/doubles/frames.h"
#include "tests/support/gtest_qt.h"
#include "tests/support/little_memory.h"
#include "tests/support/random_data.h"

#include <QBuffer>
#include <QDataStream>
#include <QIODevice>

#include <vector>

namespace
{

typedef QPair<QString, quint16> Socket;

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

// The stream version of the panel's Qt and the newest of the Qt that this is built on.
std::vector<int> streamVersions()
{
    std::vector<int> versions(1, QDataStream::Qt_4_8);
    const int newest = QDataStream().version();
    if (newest != QDataStream::Qt_4_8)
        versions.push_back(newest);
    return versions;
}

const char *const Golden = "00 00 00 10"                         // type
                           "00 00 00 08 00 43 00 4F 00 4D 00 32" // deviceString
                           "00 00 25 80 00 00 00 08"             // baudrate, databits
                           "00 00 00 00 00 00 00 02"             // stopbits, parity
                           "00 00 00 05 FF FF FF FE"             // auxValue, linkId
                           "00 00 00 01"                         // currentIpIndex
                           "00 00 00 02"                         // number of sockets
                           "00 00 00 06 00 61 00 E4 20 AC 01 F6" // "a\u00E4\u20AC", 502
                           "FF FF FF FF FF FF";                  // a null text, 65535
const int GoldenSocketsStart = 48;

DeviceSetting goldenSetting()
{
    DeviceSetting setting(DefaultDeviceType, text("COM2"), 9600, 8, 0, 2, 5, text("not persisted"));
    setting.linkId = -2;
    setting.sockets << Socket(text("a\xE4") + QChar(0x20AC), quint16(502))
                    << Socket(QString(), quint16(65535));
    setting.setCurrentIPIndex(1);
    return setting;
}

QByteArray written(const DeviceSetting &setting, int version)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(version);
    stream << setting;
    return bytes;
}

QDataStream::Status readInto(DeviceSetting &setting, const QByteArray &bytes, int version)
{
    QDataStream stream(bytes);
    stream.setVersion(version);
    stream >> setting;
    return stream.status();
}

void expectGoldenFields(const DeviceSetting &setting)
{
    EXPECT_EQ(setting.type, 16);
    EXPECT_EQ(setting.deviceString, text("COM2"));
    EXPECT_EQ(setting.baudrate, 9600);
    EXPECT_EQ(setting.databits, 8);
    EXPECT_EQ(setting.stopbits, 0);
    EXPECT_EQ(setting.parity, 2);
    EXPECT_EQ(setting.auxValue, 5);
    EXPECT_EQ(setting.linkId, -2);
}

} // namespace

TEST(DeviceSettingStream, WritesGoldenBytes)
{
    for (const int version : streamVersions())
        EXPECT_EQ(written(goldenSetting(), version), fromHex(Golden)) << version;
}

TEST(DeviceSettingStream, ReadsGoldenBytes)
{
    for (const int version : streamVersions()) {
        DeviceSetting setting;
        setting.auxText = text("stays");
        EXPECT_EQ(readInto(setting, fromHex(Golden), version), QDataStream::Ok);
        expectGoldenFields(setting);
        EXPECT_EQ(setting.sockets, goldenSetting().sockets);
        EXPECT_TRUE(setting.sockets.at(1).first.isNull());
        EXPECT_EQ(setting.auxText, text("stays"));
    }
}

TEST(DeviceSettingStream, LittleEndianStream)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    out << goldenSetting();
    EXPECT_EQ(bytes.left(12), fromHex("10 00 00 00 08 00 00 00 43 00 4F 00"));
    EXPECT_EQ(bytes.right(6), fromHex("FF FF FF FF FF FF"));
    EXPECT_EQ(bytes.mid(GoldenSocketsStart + 10, 2), fromHex("F6 01"));
}

TEST(DeviceSettingStream, IndexIsDroppedByAnEmptyObject)
{
    DeviceSetting setting(DefaultDeviceType, QString(), 0, 0, 0, 0);
    EXPECT_EQ(readInto(setting, fromHex(Golden), QDataStream::Qt_4_8), QDataStream::Ok);
    EXPECT_EQ(setting.currentIpIndex, 0);
    EXPECT_EQ(setting.sockets.size(), 2);
}

TEST(DeviceSettingStream, IndexIsRestoredByAnObjectThatHasTheEntry)
{
    DeviceSetting setting;
    setting.sockets << Socket(text("x"), quint16(1)) << Socket(text("y"), quint16(2));
    EXPECT_EQ(readInto(setting, fromHex(Golden), QDataStream::Qt_4_8), QDataStream::Ok);
    EXPECT_EQ(setting.currentIpIndex, 1);
    EXPECT_EQ(setting.socketIP(-1), QString());
    EXPECT_EQ(setting.port(-1), 65535);
}

TEST(DeviceSettingStream, IndexIsCheckedAgainstTheListBefore)
{
    DeviceSetting setting;
    setting.sockets << Socket(text("x"), quint16(1));
    setting.currentIpIndex = 0;
    EXPECT_EQ(readInto(setting, fromHex(Golden), QDataStream::Qt_4_8), QDataStream::Ok);
    EXPECT_EQ(setting.currentIpIndex, 0);

    DeviceSetting longer;
    for (int i = 0; i < 3; ++i)
        longer.sockets << Socket(text("x"), quint16(i));
    longer.setCurrentIPIndex(2);
    const QByteArray noSockets = fromHex(Golden).left(GoldenSocketsStart - 4) + QByteArray(4, '\0');
    EXPECT_EQ(readInto(longer, noSockets, QDataStream::Qt_4_8), QDataStream::Ok);
    EXPECT_EQ(longer.currentIpIndex, 1);
    EXPECT_TRUE(longer.sockets.isEmpty());
}

namespace
{

// What comes of a list in a stream: entries, status, and where the stream stands afterwards.
struct Outcome {
    QList<Socket> sockets;
    QDataStream::Status status;
    qint64 position;
};

bool operator==(const Outcome &a, const Outcome &b)
{
    return a.sockets == b.sockets && a.status == b.status && a.position == b.position;
}

// The bytes of a record up to its list, and the list.
QByteArray recordWith(const QByteArray &list)
{
    return fromHex(Golden).left(GoldenSocketsStart - 4) + list;
}

template <typename Reader>
Outcome outcomeOf(const QByteArray &record, int version, QDataStream::Status before, const Reader &read)
{
    QBuffer buffer;
    buffer.setData(record);
    buffer.open(QIODevice::ReadOnly);
    QDataStream stream(&buffer);
    stream.setVersion(version);
    stream.setStatus(before);
    const QList<Socket> sockets = read(stream);
    const Outcome outcome = {sockets, stream.status(), buffer.pos()};
    return outcome;
}

Outcome byTheRecord(const QByteArray &record, int version, QDataStream::Status before)
{
    return outcomeOf(record, version, before, [](QDataStream &stream) {
        DeviceSetting setting = goldenSetting();
        stream >> setting;
        return setting.sockets;
    });
}

Outcome byQt(const QByteArray &record, int version, QDataStream::Status before)
{
    return outcomeOf(record, version, before, [](QDataStream &stream) {
        DeviceSetting fields;
        qint32 type = 0;
        stream >> type >> fields.deviceString >> fields.baudrate >> fields.databits >> fields.stopbits >>
            fields.parity >> fields.auxValue >> fields.linkId >> fields.currentIpIndex;
        QList<Socket> sockets;
        stream >> sockets;
        return sockets;
    });
}

// Counts that fit the bytes and some that do not, texts of all kinds of lengths, cut anywhere.
QByteArray randomList(RandomData &random)
{
    QByteArray list = bigEndian(0) + bigEndian(random.between(0, 5));
    for (int sockets = random.between(0, 4); sockets > 0; --sockets) {
        const int size = random.between(0, 6);
        list += bigEndian(0) + bigEndian(size) + random.bytes(random.between(0, 9) == 0 ? 1 : size) +
                random.bytes(2);
        if (random.between(0, 9) == 0)
            list += QByteArray(4, '\xFF') + random.bytes(2);
    }
    return random.between(0, 2) == 0 ? list.left(random.between(0, sizeOf(list))) : list;
}

} // namespace

TEST(DeviceSettingStream, ListsAreReadAsQtReadsThem)
{
    RandomData random;
    SCOPED_TRACE(random.trace());
    for (int i = 0; i < 20000; ++i) {
        const QByteArray record = recordWith(randomList(random));
        for (const int version : streamVersions())
            for (const auto before :
                 {QDataStream::Ok, QDataStream::ReadPastEnd, QDataStream::ReadCorruptData})
                ASSERT_TRUE(byTheRecord(record, version, before) == byQt(record, version, before))
                    << toHex(record) << " with status " << before;
    }
}

TEST(DeviceSettingStream, AnnouncedNumberOfSocketsTakesNoMemory)
{
    for (const char *count : {"10 00 00 00", "7F FF FF FF", "80 00 00 00", "FF FF FF FF"})
        inLittleMemory(64, [count] {
            const Outcome outcome =
                byTheRecord(recordWith(fromHex(count) + fromHex(Golden).mid(GoldenSocketsStart)),
                            QDataStream::Qt_4_8, QDataStream::Ok);
            // Qt 4 takes the end of the stream for the end of the list.
            const bool isCut = QT_VERSION < 0x050000;
            const bool isRight =
                isCut ? outcome.sockets == goldenSetting().sockets && outcome.status == QDataStream::Ok
                      : outcome.sockets.isEmpty() && outcome.status == QDataStream::ReadPastEnd;
            return std::string(isRight ? "" : "another list");
        });
}

TEST(DeviceSettingStream, AnyTypeComesBack)
{
    DeviceSetting setting = goldenSetting();
    setting.type = static_cast<device_type>(-2147483647);
    DeviceSetting back;
    readInto(back, written(setting, QDataStream::Qt_4_8), QDataStream::Qt_4_8);
    EXPECT_EQ(back.type, -2147483647);
}

TEST(DeviceSettingStream, RecordsFollowEachOther)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << goldenSetting() << DeviceSetting(DefaultDeviceType, text("COM3"), 1, 2, 3, 4) << quint8(0x5A);
    QDataStream in(bytes);
    DeviceSetting first;
    DeviceSetting second;
    quint8 last = 0;
    in >> first >> second >> last;
    expectGoldenFields(first);
    EXPECT_EQ(second.deviceString, text("COM3"));
    EXPECT_EQ(second.parity, 4);
    EXPECT_TRUE(second.sockets.isEmpty());
    EXPECT_EQ(last, 0x5A);
}

TEST(DeviceSettingStream, ShortStreamShowsInTheStatus)
{
    const QByteArray golden = fromHex(Golden);
    // A stream that ends right after a socket is a shorter list for Qt 4.
    const int endOfFirstSocket = 60;
    const QDataStream::Status afterSocket =
        QT_VERSION < 0x050000 ? QDataStream::Ok : QDataStream::ReadPastEnd;
    for (const int version : streamVersions()) {
        for (int size = 0; size < golden.size(); ++size) {
            DeviceSetting setting = goldenSetting();
            EXPECT_EQ(readInto(setting, golden.left(size), version),
                      size == endOfFirstSocket ? afterSocket : QDataStream::ReadPastEnd)
                << size;
            EXPECT_EQ(setting.type, size < 4 ? 0 : 16) << size;
            EXPECT_EQ(setting.baudrate, size < 20 ? 0 : 9600) << size;
            EXPECT_EQ(setting.linkId, size < 40 ? 0 : -2) << size;
            EXPECT_LE(setting.sockets.size(), 2) << size;
            EXPECT_EQ(setting.auxText, text("not persisted")) << size;
        }
    }
}
