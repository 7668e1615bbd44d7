#include "drivers/modbus_rtu_slave_over_tcp/rtu_frame.h"
#include "tests/doubles/frames.h"
#include "tests/support/gtest_qt.h"

namespace
{

const unsigned char *bytesOf(const QByteArray &frame)
{
    return reinterpret_cast<const unsigned char *>(frame.constData());
}

bool passes(const QByteArray &frame)
{
    return ModbusRTUSlaveCheckCRC(bytesOf(frame), static_cast<unsigned int>(frame.size()));
}

} // namespace

TEST(RtuFrame, GoldenReadRequests)
{
    EXPECT_EQ(ModbusRTUSlaveBuildReadDevicesRequest(1, 3, 0, 1), fromHex("01 03 00 00 00 01 84 0A"));
    EXPECT_EQ(ModbusRTUSlaveBuildReadDevicesRequest(17, 3, 0x006B, 3), fromHex("11 03 00 6B 00 03 76 87"));
    EXPECT_EQ(ModbusRTUSlaveBuildReadDevicesRequest(2, 1, 0x0013, 0x0025), framed("02 01 00 13 00 25"));
    EXPECT_EQ(ModbusRTUSlaveBuildReadDevicesRequest(255, 2, 65535, 2008), framed("FF 02 FF FF 07 D8"));
    EXPECT_EQ(ModbusRTUSlaveBuildReadDevicesRequest(0, 4, 0x1234, 65535), framed("00 04 12 34 FF FF"));
}

TEST(RtuFrame, SingleWriteCarriesItsValueAsItStands)
{
    EXPECT_EQ(ModbusRTUSlaveBuildWriteSingleRequest(17, 6, 1, fromHex("00 03")),
              fromHex("11 06 00 01 00 03 9A 9B"));
    EXPECT_EQ(ModbusRTUSlaveBuildWriteSingleRequest(17, 5, 0x00AC, fromHex("FF 00")),
              fromHex("11 05 00 AC FF 00 4E 8B"));
    EXPECT_EQ(ModbusRTUSlaveBuildWriteSingleRequest(9, 6, 0xFFFF, QByteArray()), framed("09 06 FF FF"));
}

TEST(RtuFrame, MultipleWrites)
{
    EXPECT_EQ(ModbusRTUSlaveBuildFn15Request(17, 0x13, 10, fromHex("CD 01")),
              fromHex("11 0F 00 13 00 0A 02 CD 01 BF 0B"));
    EXPECT_EQ(ModbusRTUSlaveBuildFn16Request(17, 1, 2, fromHex("00 0A 01 02")),
              fromHex("11 10 00 01 00 02 04 00 0A 01 02 C6 F0"));
    EXPECT_EQ(ModbusRTUSlaveBuildFn16Request(1, 0, 0, QByteArray()), framed("01 10 00 00 00 00 00"));
}

TEST(RtuFrame, ByteCountIsTheLowByteOfTheSize)
{
    const QByteArray data(258, '\x5A');
    EXPECT_EQ(ModbusRTUSlaveBuildFn16Request(1, 0x0102, 0x0304, data),
              framed(fromHex("01 10 01 02 03 04 02") + data));
    EXPECT_EQ(ModbusRTUSlaveBuildFn15Request(1, 0x0102, 0x0304, data),
              framed(fromHex("01 0F 01 02 03 04 02") + data));
}

// Two bytes lead through every entry of both tables.
TEST(RtuFrame, CrcAgreesWithTheBitwiseOneForEveryPairOfBytes)
{
    for (int first = 0; first < 256; ++first)
        for (int second = 0; second < 256; ++second) {
            const QByteArray bytes = QByteArray(1, static_cast<char>(first)) + static_cast<char>(second);
            ASSERT_TRUE(passes(bytes + crcOf(bytes))) << toHex(bytes);
        }
}

TEST(RtuFrame, CrcOfEveryLengthOfAFrame)
{
    QByteArray bytes;
    for (int length = 0; length < 300; ++length) {
        EXPECT_TRUE(passes(framed(bytes))) << length;
        bytes.append(static_cast<char>(length * 37 + 11));
    }
}

TEST(RtuFrame, CrcFindsEveryFlippedBit)
{
    const QByteArray good = framed("01 03 04 12 34 56 78");
    for (int bit = 0; bit < good.size() * 8; ++bit) {
        QByteArray bad = good;
        bad[bit / 8] = static_cast<char>(bad.at(bit / 8) ^ (1 << bit % 8));
        EXPECT_FALSE(passes(bad)) << "bit " << bit;
    }
}

TEST(RtuFrame, CrcBytesAreNotExchanged)
{
    EXPECT_TRUE(passes(fromHex("01 03 00 00 00 01 84 0A")));
    EXPECT_FALSE(passes(fromHex("01 03 00 00 00 01 0A 84")));
}

TEST(RtuFrame, CrcOfNothingIsItsInitialValue)
{
    EXPECT_TRUE(passes(fromHex("FF FF")));
    EXPECT_FALSE(passes(fromHex("00 00")));
}
