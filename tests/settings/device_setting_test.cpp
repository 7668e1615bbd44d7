#include "drivers/device_setting.h"
#include "tests/doubles/frames.h"
#include "tests/support/gtest_qt.h"
#include "tests/support/message_capture.h"

#include <limits>

namespace
{

typedef QPair<QString, QString> TextPair;

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

DeviceSetting defaultSetting()
{
    return DeviceSetting(DefaultDeviceType, text("COM2"), 9600, 8, 0, 2);
}

DeviceSetting withTwoSockets()
{
    DeviceSetting setting = defaultSetting();
    setting.setSocketData(QList<TextPair>() << TextPair(text("10.0.0.5"), text("502"))
                                            << TextPair(text("10.0.0.6"), text("503")));
    return setting;
}

const int Outside[] = {2, 5, -2, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};

} // namespace

TEST(DeviceSetting, DefaultIsZeroAndEmptyWithoutALink)
{
    const DeviceSetting setting;
    EXPECT_EQ(setting.type, 0);
    EXPECT_EQ(setting.baudrate, 0);
    EXPECT_EQ(setting.databits, 0);
    EXPECT_EQ(setting.stopbits, 0);
    EXPECT_EQ(setting.parity, 0);
    EXPECT_EQ(setting.auxValue, 0);
    EXPECT_EQ(setting.linkId, -1);
    EXPECT_EQ(setting.currentIpIndex, 0);
    EXPECT_TRUE(setting.deviceString.isEmpty());
    EXPECT_TRUE(setting.auxText.isEmpty());
    EXPECT_TRUE(setting.sockets.isEmpty());
}

TEST(DeviceSetting, SixValues)
{
    const DeviceSetting setting = defaultSetting();
    EXPECT_EQ(setting.type, 16);
    EXPECT_EQ(setting.deviceString, text("COM2"));
    EXPECT_EQ(setting.baudrate, 9600);
    EXPECT_EQ(setting.databits, 8);
    EXPECT_EQ(setting.stopbits, 0);
    EXPECT_EQ(setting.parity, 2);
    EXPECT_EQ(setting.auxValue, 0);
    EXPECT_TRUE(setting.auxText.isEmpty());
    EXPECT_EQ(setting.linkId, -1);
    EXPECT_EQ(setting.currentIpIndex, 0);
    EXPECT_TRUE(setting.sockets.isEmpty());
}

TEST(DeviceSetting, AuxiliaryValues)
{
    const DeviceSetting setting(static_cast<device_type>(-3), text("COM1"), 1, 2, 3, 4, 5, text("aux"));
    EXPECT_EQ(setting.type, -3);
    EXPECT_EQ(setting.deviceString, text("COM1"));
    EXPECT_EQ(setting.baudrate, 1);
    EXPECT_EQ(setting.databits, 2);
    EXPECT_EQ(setting.stopbits, 3);
    EXPECT_EQ(setting.parity, 4);
    EXPECT_EQ(setting.auxValue, 5);
    EXPECT_EQ(setting.auxText, text("aux"));
    EXPECT_EQ(setting.linkId, -1);
    EXPECT_EQ(setting.currentIpIndex, 0);
    EXPECT_TRUE(setting.sockets.isEmpty());
}

TEST(DeviceSetting, SocketsByIndex)
{
    DeviceSetting setting = withTwoSockets();
    EXPECT_EQ(setting.socketIP(0), text("10.0.0.5"));
    EXPECT_EQ(setting.socketIP(1), text("10.0.0.6"));
    EXPECT_EQ(setting.port(0), 502);
    EXPECT_EQ(setting.port(1), 503);
    setting.setCurrentIPIndex(1);
    EXPECT_EQ(setting.socketIP(-1), text("10.0.0.6"));
    EXPECT_EQ(setting.port(-1), 503);
}

TEST(DeviceSetting, SocketsOutsideTheListAreNull)
{
    const DeviceSetting setting = withTwoSockets();
    for (const int index : Outside) {
        EXPECT_TRUE(setting.socketIP(index).isNull()) << index;
        EXPECT_EQ(setting.port(index), 0) << index;
    }
    EXPECT_TRUE(defaultSetting().socketIP(-1).isNull());
    EXPECT_EQ(defaultSetting().port(-1), 0);
}

TEST(DeviceSetting, SettersChangeOneHalf)
{
    DeviceSetting setting = withTwoSockets();
    setting.setSocketIP(text("1.2.3.4"), 0);
    EXPECT_EQ(setting.socketIP(0), text("1.2.3.4"));
    EXPECT_EQ(setting.port(0), 502);
    setting.setPort(65535, 1);
    EXPECT_EQ(setting.socketIP(1), text("10.0.0.6"));
    EXPECT_EQ(setting.port(1), 65535);
    setting.setCurrentIPIndex(1);
    setting.setPort(503, -1);
    setting.setSocketIP(text("5.6.7.8"), -1);
    EXPECT_EQ(setting.socketIP(1), text("5.6.7.8"));
    EXPECT_EQ(setting.port(1), 503);
    EXPECT_EQ(setting.socketIP(0), text("1.2.3.4"));
    EXPECT_EQ(setting.port(0), 502);
}

TEST(DeviceSetting, SettersOutsideTheListDoNothing)
{
    DeviceSetting setting = withTwoSockets();
    const QList<QPair<QString, quint16>> before = setting.sockets;
    for (const int index : Outside) {
        setting.setPort(503, index);
        setting.setSocketIP(text("x"), index);
        EXPECT_EQ(setting.sockets, before) << index;
    }
    DeviceSetting empty = defaultSetting();
    empty.setPort(503, -1);
    empty.setSocketIP(text("x"), -1);
    EXPECT_TRUE(empty.sockets.isEmpty());
}

TEST(DeviceSetting, SettersWhileTheCurrentIndexPointsPastTheListDoNothing)
{
    DeviceSetting setting = withTwoSockets();
    setting.setCurrentIPIndex(1);
    setting.setSocketData(QList<TextPair>() << TextPair(text("10.0.0.7"), text("1")));
    ASSERT_EQ(setting.currentIpIndex, 1);
    EXPECT_TRUE(setting.socketIP(-1).isNull());
    EXPECT_EQ(setting.port(-1), 0);
    setting.setPort(503, -1);
    setting.setSocketIP(text("x"), -1);
    ASSERT_EQ(setting.sockets.size(), 1);
    EXPECT_EQ(setting.socketIP(0), text("10.0.0.7"));
    EXPECT_EQ(setting.port(0), 1);
}

TEST(DeviceSetting, CurrentIndexStaysInTheList)
{
    DeviceSetting setting = withTwoSockets();
    setting.setCurrentIPIndex(1);
    EXPECT_EQ(setting.currentIpIndex, 1);
    setting.setCurrentIPIndex(-1);
    EXPECT_EQ(setting.currentIpIndex, 1);
    for (const int index : Outside) {
        setting.setCurrentIPIndex(index);
        EXPECT_EQ(setting.currentIpIndex, 1) << index;
    }
    setting.setCurrentIPIndex(0);
    EXPECT_EQ(setting.currentIpIndex, 0);
}

TEST(DeviceSetting, PortsFromTexts)
{
    DeviceSetting setting = withTwoSockets();
    QList<TextPair> data;
    for (const char *port : {"502", "x", "65535", "65536", "-1", "", "0x10", "010"})
        data << TextPair(text("10.0.0.6"), text(port));
    setting.setSocketData(data);
    ASSERT_EQ(setting.sockets.size(), data.size());
    const int expected[] = {502, 0, 65535, 0, 0, 0, 0, 10};
    for (int i = 0; i < data.size(); ++i)
        EXPECT_EQ(setting.port(i), expected[i]) << i;
}

TEST(DeviceSetting, SocketDataReplacesTheWholeList)
{
    DeviceSetting setting = withTwoSockets();
    setting.setSocketData(QList<TextPair>());
    EXPECT_TRUE(setting.sockets.isEmpty());
}

TEST(DeviceSetting, DumpOfTheDefault)
{
    const MessageCapture capture;
    defaultSetting().dump();
    EXPECT_EQ(MessageCapture::lines(),
              QList<QString>() << text("type: 16 string: \"COM2\" baudrate: 9600 databits: 8 stopbits: 0 "
                                       "parity: 2 linkID: -1 current ip: \"\" current port: 0"));
}

TEST(DeviceSetting, DumpShowsTheCurrentSocket)
{
    DeviceSetting setting = withTwoSockets();
    setting.setCurrentIPIndex(1);
    setting.linkId = 4;
    setting.auxValue = 77;
    setting.auxText = text("unseen");
    const MessageCapture capture;
    setting.dump();
    EXPECT_EQ(MessageCapture::lines(),
              QList<QString>() << text("type: 16 string: \"COM2\" baudrate: 9600 databits: 8 stopbits: 0 "
                                       "parity: 2 linkID: 4 current ip: \"10.0.0.6\" current port: 503"));
}

TEST(DeviceSetting, DumpLeavesTextsAsTheyAre)
{
    DeviceSetting setting = withTwoSockets();
    setting.deviceString = text("a\"b\\c\n\xE4");
    setting.setSocketIP(text("\"\\\t"), 0);
    const MessageCapture capture;
    setting.dump();
    EXPECT_EQ(
        MessageCapture::lines(),
        QList<QString>() << text("type: 16 string: \"a\"b\\c\n\xE4\" baudrate: 9600 databits: 8 stopbits: 0 "
                                 "parity: 2 linkID: -1 current ip: \"\"\\\t\" current port: 502"));
}
