#include "drivers/driver_setting.h"
#include "tests/doubles/frames.h"
#include "tests/support/gtest_qt.h"
#include "tests/support/message_capture.h"

#include <QDataStream>
#include <QIODevice>
#include <QStringList>

namespace
{

const char *const Golden = "00 00 0B B8 00 00 00 03 00 00 00 01 FF FF FF FF";

QByteArray written(const DriverSetting &setting, int version)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(version);
    stream << setting;
    return bytes;
}

void expectNumbers(const DriverSetting &setting, int timeout, int retry, int stationId, int delay)
{
    EXPECT_EQ(setting.timeout, timeout);
    EXPECT_EQ(setting.retry, retry);
    EXPECT_EQ(setting.stationId, stationId);
    EXPECT_EQ(setting.delay, delay);
}

} // namespace

TEST(DriverSetting, DefaultIsZeroAndEmpty)
{
    const DriverSetting setting;
    expectNumbers(setting, 0, 0, 0, 0);
    EXPECT_TRUE(setting.auxText.isEmpty());
    EXPECT_FALSE(setting.auxFlag);
}

TEST(DriverSetting, FourNumbers)
{
    const DriverSetting setting(3000, 3, 1, 7);
    expectNumbers(setting, 3000, 3, 1, 7);
    EXPECT_TRUE(setting.auxText.isEmpty());
    EXPECT_FALSE(setting.auxFlag);
}

TEST(DriverSetting, DropsTheForeignTextAndNumber)
{
    const DriverSetting setting(1, 2, 3, 4, QString::fromLatin1("dropped"), 5);
    expectNumbers(setting, 1, 2, 3, 4);
    EXPECT_TRUE(setting.auxText.isEmpty());
    EXPECT_FALSE(setting.auxFlag);
}

TEST(DriverSetting, KeepsTheSecondTextAndTheFlag)
{
    const DriverSetting setting(1, 2, 3, 4, QString::fromLatin1("dropped"), 5, QString::fromLatin1("kept"),
                                true);
    expectNumbers(setting, 1, 2, 3, 4);
    EXPECT_EQ(setting.auxText, QString::fromLatin1("kept"));
    EXPECT_TRUE(setting.auxFlag);
}

TEST(DriverSetting, CopyLeavesTheFlag)
{
    const DriverSetting source(1, 2, 3, 4, QString(), 0, QString::fromLatin1("text"), true);
    DriverSetting target(9, 9, 9, 9);
    target.copy(source);
    expectNumbers(target, 1, 2, 3, 4);
    EXPECT_EQ(target.auxText, QString::fromLatin1("text"));
    EXPECT_FALSE(target.auxFlag);
    DriverSetting flagged = source;
    flagged.copy(DriverSetting(5, 6, 7, 8));
    EXPECT_TRUE(flagged.auxFlag);
    EXPECT_TRUE(flagged.auxText.isEmpty());
}

TEST(DriverSetting, GoldenBytesOfEveryStreamVersion)
{
    for (int version = QDataStream::Qt_1_0; version <= QDataStream().version(); ++version)
        EXPECT_EQ(written(DriverSetting(3000, 3, 1, -1), version), fromHex(Golden)) << version;
}

TEST(DriverSetting, StreamsInTheStreamsOwnByteOrder)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream << DriverSetting(3000, 3, 1, -1);
    EXPECT_EQ(bytes, fromHex("B8 0B 00 00 03 00 00 00 01 00 00 00 FF FF FF FF"));
}

TEST(DriverSetting, ReadsGoldenBytes)
{
    QDataStream stream(fromHex(Golden));
    DriverSetting setting(0, 0, 0, 0, QString(), 0, QString::fromLatin1("stays"), true);
    stream >> setting;
    EXPECT_EQ(stream.status(), QDataStream::Ok);
    EXPECT_TRUE(stream.atEnd());
    expectNumbers(setting, 3000, 3, 1, -1);
    EXPECT_EQ(setting.auxText, QString::fromLatin1("stays"));
    EXPECT_TRUE(setting.auxFlag);
}

TEST(DriverSetting, AuxiliaryFieldsAreNotPersisted)
{
    const QByteArray bytes = written(
        DriverSetting(3000, 3, 1, -1, QString(), 0, QString::fromLatin1("text"), true), QDataStream::Qt_4_8);
    EXPECT_EQ(bytes, fromHex(Golden));
}

TEST(DriverSetting, ShortStreamShowsInTheStatus)
{
    const QByteArray golden = fromHex(Golden);
    for (int size = 0; size < golden.size(); ++size) {
        QDataStream stream(golden.left(size));
        DriverSetting setting;
        stream >> setting;
        EXPECT_EQ(stream.status(), QDataStream::ReadPastEnd) << size;
        EXPECT_EQ(setting.timeout, size < 4 ? 0 : 3000) << size;
        EXPECT_EQ(setting.delay, 0) << size;
    }
}

TEST(DriverSetting, Dump)
{
    const MessageCapture capture;
    DriverSetting(3000, 3, 1, 0).dump();
    EXPECT_EQ(MessageCapture::lines(),
              QList<QString>() << QString::fromLatin1("timeout: 3000 retry: 3 stationid: 1 delay: 0"));
}
