// A few values at the edge that the tests by topic leave out.

#include "drivers/driver_setting.h"
#include "drivers/tools/bit_array.h"
#include "tests/support/driver_test.h"

TEST(ModbusBitSet, SearchesFromTheFirstOn)
{
    ModbusBitSet set;
    set.DISetPush(7);
    set.DISetSort();
    EXPECT_EQ(set.DISetContains(7), 0);
    set.DOSetPush(8);
    set.DOSetSort();
    EXPECT_EQ(set.DOSetContains(8), 0);
}

TEST(CopyBits, TakesZerosForWhatTheSourceLacks)
{
    QByteArray target(3, '\xFF');
    CopyBits(target, QByteArray(1, '\x5A'), 0, 20);
    EXPECT_EQ(target, QByteArray("\x5A\x00\xF0", 3));
}

TEST(GetBit, DoesNotLookBehindTheArray)
{
    const char bytes[] = {'\xFF', '\xFF'};
    EXPECT_FALSE(getBit(QByteArray::fromRawData(bytes, 1), 8));
}

TEST(DefaultSettings, AreZeroAndEmpty)
{
    const DriverSetting driver;
    EXPECT_EQ(driver.timeout, 0);
    EXPECT_EQ(driver.retry, 0);
    EXPECT_EQ(driver.stationId, 0);
    EXPECT_EQ(driver.delay, 0);
    EXPECT_FALSE(driver.auxFlag);

    const DeviceSetting device;
    EXPECT_EQ(device.type, 0);
    EXPECT_EQ(device.baudrate, 0);
    EXPECT_EQ(device.databits, 0);
    EXPECT_EQ(device.stopbits, 0);
    EXPECT_EQ(device.parity, 0);
    EXPECT_EQ(device.auxValue, 0);
    EXPECT_EQ(device.linkId, -1);
}

TEST(AddressText, KeepsTheLastCharacterOfLatin1)
{
    LoadedDriver link;
    EXPECT_TRUE(link.read(2,
                          "FN\xC3\xBF"
                          "7",
                          126)
                    .isEmpty());
    EXPECT_EQ(link.error(), "can't read any word from FN\xC3\xBF"
                            "7 (read 126 word(s) from 1-FN\xC3\xBF"
                            "7)");
}
