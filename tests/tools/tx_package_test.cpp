#include "drivers/tools/timing.h"
#include "drivers/tools/tx_package.h"
#include "tests/doubles/frames.h"
#include "tests/support/gtest_qt.h"

#include <initializer_list>
#include <limits>

namespace
{

const int MaxInt = std::numeric_limits<int>::max();
const int MinInt = std::numeric_limits<int>::min();

QList<int> sizes(std::initializer_list<int> entries)
{
    QList<int> list;
    for (const int entry : entries)
        list.append(entry);
    return list;
}

TxPackage package(const char *hexText, std::initializer_list<int> sectionSizes)
{
    TxPackage made;
    made.setSectionSize(sizes(sectionSizes));
    made.setData(fromHex(hexText));
    return made;
}

TxPackage packageOf(const char *hexText)
{
    TxPackage made;
    made.appendSection(fromHex(hexText));
    return made;
}

} // namespace

TEST(TxPackage, StartsEmpty)
{
    TxPackage frame;
    EXPECT_EQ(frame.byteArrayData(), QByteArray());
    EXPECT_EQ(frame.totalSize(), 0);
    EXPECT_EQ(frame.numberOfSections(), 0);
    EXPECT_EQ(frame.sectionStartIndex(0), -1);
    EXPECT_EQ(frame.toString(), QString::fromLatin1("() : "));
}

TEST(TxPackage, AppendsSections)
{
    TxPackage frame;
    EXPECT_TRUE(frame.appendByte(0x01));
    EXPECT_TRUE(frame.appendWord(0x0203));
    EXPECT_TRUE(frame.appendByte2Ascii(0x0A));
    EXPECT_EQ(frame.byteArrayData(), fromHex("01 03 02 30 41"));
    EXPECT_EQ(frame.totalSize(), 5);
    ASSERT_EQ(frame.numberOfSections(), 3);
    EXPECT_EQ(frame.sectionSize(0), 1);
    EXPECT_EQ(frame.sectionSize(1), 2);
    EXPECT_EQ(frame.sectionSize(2), 2);
    EXPECT_EQ(frame.sectionStartIndex(0), 0);
    EXPECT_EQ(frame.sectionStartIndex(1), 1);
    EXPECT_EQ(frame.sectionStartIndex(2), 3);
    EXPECT_EQ(frame.dataAt(0), fromHex("01"));
    EXPECT_EQ(frame.dataAt(1), fromHex("03 02"));
    EXPECT_EQ(frame.dataAt(2), QByteArray("0A"));
}

TEST(TxPackage, AppendsDoubleWordsBytesAndTexts)
{
    TxPackage frame;
    EXPECT_TRUE(frame.appendDWord(0xF1020304));
    EXPECT_TRUE(frame.appendSection(fromHex("0A 00 0B")));
    EXPECT_TRUE(frame.appendSection(QByteArray()));
    EXPECT_TRUE(frame.appendString(QString::fromLatin1("a\xE4z")));
    EXPECT_TRUE(frame.appendByte2Ascii(0xEF));
    EXPECT_EQ(frame.dataAt(0), fromHex("04 03 02 F1"));
    EXPECT_EQ(frame.dataAt(1), fromHex("0A 00 0B"));
    EXPECT_EQ(frame.sectionSize(2), 0);
    EXPECT_EQ(frame.dataAt(3), QByteArray("a\xE4z"));
    EXPECT_EQ(frame.sectionSize(3), 3);
    EXPECT_EQ(frame.dataAt(4), QByteArray("EF"));
    EXPECT_EQ(frame.totalSize(), 12);
}

TEST(TxPackage, EveryByteAsTwoUpperCaseDigits)
{
    for (int value = 0; value < 256; ++value) {
        TxPackage frame;
        frame.appendByte2Ascii(static_cast<unsigned char>(value));
        const QByteArray digits("0123456789ABCDEF");
        EXPECT_EQ(frame.byteArrayData(), digits.mid(value / 16, 1) + digits.mid(value % 16, 1));
    }
}

TEST(TxPackage, LrcIsThePlainSum)
{
    TxPackage ascii = packageOf("01 02 FF");
    EXPECT_TRUE(ascii.appendLRCAscii());
    EXPECT_EQ(ascii.dataAt(1), QByteArray("02"));
    EXPECT_EQ(ascii.numberOfSections(), 2);
    TxPackage binary = packageOf("01 02 FF");
    EXPECT_TRUE(binary.appendLRCByte());
    EXPECT_EQ(binary.byteArrayData(), fromHex("01 02 FF 02"));
    EXPECT_EQ(binary.sectionSize(1), 1);
    TxPackage letters = packageOf("A0 0B");
    letters.appendLRCAscii();
    EXPECT_EQ(letters.dataAt(1), QByteArray("AB"));
    TxPackage nothing;
    nothing.appendLRCAscii();
    EXPECT_EQ(nothing.byteArrayData(), QByteArray("00"));
}

TEST(TxPackage, FcsIsTheExclusiveOrWhateverTheArgument)
{
    for (const int ignored : {5, 0, 1, -1}) {
        TxPackage frame = packageOf("01 03");
        EXPECT_TRUE(frame.appendFCSAscii(ignored));
        EXPECT_EQ(frame.dataAt(1), QByteArray("02"));
    }
    TxPackage letters = packageOf("A0 0B F0");
    letters.appendFCSAscii(0);
    EXPECT_EQ(letters.dataAt(1), QByteArray("5B"));
}

TEST(TxPackage, FcsWithoutATail)
{
    TxPackage frame = packageOf("01 03 F0");
    EXPECT_EQ(frame.calculateFCS(&frame, 0), 0xF2);
    EXPECT_EQ(TxPackage::calculateFCS(&frame, 1), 0x02);
    EXPECT_EQ(TxPackage::calculateFCS(&frame, 2), 0x01);
    EXPECT_EQ(TxPackage::calculateFCS(&frame, 3), 0);
    EXPECT_EQ(TxPackage::calculateFCS(&frame, 4), 0);
    EXPECT_EQ(TxPackage::calculateFCS(&frame, MaxInt), 0);
    EXPECT_EQ(TxPackage::calculateFCS(&frame, -1), 0xF2);
    EXPECT_EQ(TxPackage::calculateFCS(&frame, MinInt), 0xF2);
}

TEST(TxPackage, SetDataLeavesTheSections)
{
    TxPackage frame;
    frame.appendByte(1);
    EXPECT_TRUE(frame.setData(fromHex("0A 0B 0C")));
    EXPECT_EQ(frame.byteArrayData(), fromHex("0A 0B 0C"));
    EXPECT_EQ(frame.numberOfSections(), 1);
    EXPECT_EQ(frame.dataAt(0), fromHex("0A"));
    EXPECT_TRUE(frame.setData("\x0D\x00\x0E", 3));
    EXPECT_EQ(frame.byteArrayData(), fromHex("0D 00 0E"));
    EXPECT_EQ(frame.numberOfSections(), 1);
}

TEST(TxPackage, SetDataFromOddPlaces)
{
    TxPackage frame = packageOf("01 02 03");
    EXPECT_TRUE(frame.setData(frame.data() + 1, 2));
    EXPECT_EQ(frame.byteArrayData(), fromHex("02 03"));
    EXPECT_TRUE(frame.setData("abc", -1));
    EXPECT_EQ(frame.byteArrayData(), QByteArray());
    EXPECT_TRUE(frame.setData(nullptr, 0));
    EXPECT_EQ(frame.totalSize(), 0);
}

TEST(TxPackage, DataIsItsOwn)
{
    TxPackage frame = packageOf("01 02");
    const QByteArray copy = frame.byteArrayData();
    frame.data()[0] = 9;
    EXPECT_EQ(frame.byteArrayData(), fromHex("09 02"));
    EXPECT_EQ(copy, fromHex("01 02"));
}

TEST(TxPackage, ClearAll)
{
    TxPackage frame = packageOf("01 02");
    frame.clearAll();
    EXPECT_EQ(frame.totalSize(), 0);
    EXPECT_EQ(frame.numberOfSections(), 0);
    frame.appendByte(7);
    EXPECT_EQ(frame.sectionStartIndex(0), 0);
    EXPECT_EQ(frame.dataAt(0), fromHex("07"));
}

TEST(TxPackage, NumbersOutsideTheSections)
{
    TxPackage frame = package("01 02", {1, 1});
    EXPECT_TRUE(frame.validSectionNumber(0));
    EXPECT_TRUE(frame.validSectionNumber(1));
    for (const int i : {-1, 2, 5, MaxInt, MinInt}) {
        EXPECT_FALSE(frame.validSectionNumber(i)) << i;
        EXPECT_EQ(frame.sectionStartIndex(i), -1) << i;
        EXPECT_EQ(frame.sectionSize(i), 0) << i;
        EXPECT_EQ(frame.dataAt(i), QByteArray()) << i;
    }
}

TEST(TxPackage, ArrayToInt)
{
    EXPECT_EQ(TxPackage::arrayToInt(QByteArray()), 0);
    EXPECT_EQ(TxPackage::arrayToInt(fromHex("FE 01")), 0xFE);
    EXPECT_EQ(TxPackage::arrayToInt(fromHex("00")), 0);
}

TEST(TxPackage, ShowsItsBytes)
{
    EXPECT_EQ(packageOf("01 AB 30").toString(), QString::fromLatin1("(0X1 0Xab 0X30 ) : \x01\xAB\x30"));
    EXPECT_EQ(packageOf("41 00 42").toString(), QString::fromLatin1("(0X41 0X0 0X42 ) : A"));
}

TEST(TxPackageSizes, ResizeTheDataToTheStoredSum)
{
    TxPackage frame = packageOf("01 02 03");
    frame.setSectionSize(sizes({1, 1, -1}));
    EXPECT_EQ(frame.byteArrayData(), fromHex("01"));
    frame.setSectionSize(sizes({2, 1}));
    EXPECT_EQ(frame.byteArrayData(), fromHex("01 00 00"));
    EXPECT_EQ(frame.numberOfSections(), 2);
    frame.setSectionSize(EmptyPackageSizeList());
    EXPECT_EQ(frame.totalSize(), 0);
    EXPECT_EQ(frame.numberOfSections(), 0);
}

TEST(TxPackageSizes, SumThatIsNoSize)
{
    TxPackage frame = packageOf("01 02 03");
    frame.setSectionSize(sizes({1, -5}));
    EXPECT_EQ(frame.totalSize(), 0);
    frame.setSectionSize(sizes({MaxInt, MaxInt, 5}));
    EXPECT_EQ(frame.totalSize(), 0);
    EXPECT_EQ(frame.sectionStartIndex(2), MaxInt);
    frame.setSectionSize(sizes({MinInt, MinInt, 5}));
    EXPECT_EQ(frame.totalSize(), 0);
    EXPECT_EQ(frame.sectionStartIndex(2), MinInt);
}

TEST(TxPackageSizes, SizeFromAnotherSection)
{
    const TxPackage frame = package("01 03 41 42 43", {1, 1, -1});
    EXPECT_EQ(frame.sectionSize(2), 3);
    EXPECT_EQ(frame.sectionStartIndex(2), 2);
    EXPECT_EQ(frame.dataAt(2), QByteArray("ABC"));
    EXPECT_EQ(package("FF FE", {1, 1, -1}).sectionSize(2), 0xFE);
}

TEST(TxPackageSizes, NegativeEntriesCountAsTheyStandForWhatFollows)
{
    const TxPackage frame = package("01 03 41 42 43", {1, 1, -1, 2});
    EXPECT_EQ(frame.sectionStartIndex(3), 1);
    EXPECT_EQ(frame.dataAt(3), fromHex("03 41"));
}

TEST(TxPackageSizes, ChainBackwards)
{
    // Section 3 is as long as section 2 says, which is as long as section 1 says.
    const TxPackage frame = package("09 01 02 41 42 43 44", {1, 1, -1, -2});
    EXPECT_EQ(frame.sectionSize(2), 1);
    EXPECT_EQ(frame.dataAt(2), fromHex("02"));
    EXPECT_EQ(frame.sectionSize(3), 2);
    EXPECT_EQ(frame.sectionStartIndex(3), 1);
    EXPECT_EQ(frame.dataAt(3), fromHex("01 02"));
}

TEST(TxPackageSizes, ForwardsToAPlainSection)
{
    const TxPackage frame = package("01 02 03 04 05 06", {4, -2, 1});
    EXPECT_EQ(frame.sectionStartIndex(2), 2);
    EXPECT_EQ(frame.sectionSize(1), 3);
    EXPECT_EQ(frame.sectionStartIndex(1), 4);
    EXPECT_EQ(frame.dataAt(1), fromHex("05 06"));
}

TEST(TxPackageSizes, SectionZeroIsNoSource)
{
    EXPECT_EQ(package("05 01", {1, -0}).sectionSize(1), 0);
}

TEST(TxPackageSizes, SourceThatIsEmptyOrNotThere)
{
    EXPECT_EQ(package("07 07", {1, 0, -1}).sectionSize(2), 0);
    EXPECT_EQ(package("07", {1, 1, -1}).sectionSize(2), 0);
    EXPECT_EQ(package("07 07", {1, 1, -3}).sectionSize(2), 0);
    EXPECT_EQ(package("07 07", {1, 1, -100}).sectionSize(2), 0);
    EXPECT_EQ(package("07 07", {1, 1, MinInt}).sectionSize(2), 0);
    EXPECT_EQ(package("07 07", {1, 1, MinInt}).dataAt(2), QByteArray());
}

TEST(TxPackageSizes, CirclesAreCut)
{
    const TxPackage itself = package("05 06 07", {1, -1, 1});
    EXPECT_EQ(itself.sectionSize(1), 0);
    EXPECT_EQ(itself.dataAt(1), QByteArray());
    const TxPackage two = package("05 06 07 08 09", {5, -2, -1, -1});
    for (const int i : {1, 2, 3})
        EXPECT_EQ(two.sectionSize(i), 0) << i;
    EXPECT_EQ(two.sectionSize(0), 5);
    const TxPackage three = package("05 06 07 08 09 0A 0B", {9, -2, -3, -1});
    for (const int i : {1, 2, 3})
        EXPECT_EQ(three.dataAt(i), QByteArray()) << i;
}

TEST(TxPackageSizes, LongChainBackwards)
{
    // Enough data in front for the negative entries not to lead before it.
    const int length = 2000;
    const int front = length * length;
    QList<int> chain = sizes({front, 1});
    for (int i = 2; i < length; ++i)
        chain.append(-(i - 1));
    TxPackage frame;
    frame.setSectionSize(chain);
    frame.setData(QByteArray(front, '\2') + fromHex("03 02"));
    EXPECT_EQ(frame.sectionSize(1), 1);
    EXPECT_EQ(frame.sectionSize(2), 3);
    EXPECT_EQ(frame.sectionSize(length - 1), 2);
}

TEST(TxPackageSizes, SectionsThatReachOutOfTheData)
{
    const TxPackage frame = package("01 02 03", {2, 5, MaxInt, 1, 1});
    EXPECT_EQ(frame.dataAt(1), fromHex("03"));
    EXPECT_EQ(frame.dataAt(2), QByteArray());
    EXPECT_EQ(frame.dataAt(4), QByteArray());
    const TxPackage before = package("01 02 03", {-2, 1, 2, 4});
    EXPECT_EQ(before.sectionStartIndex(1), -2);
    EXPECT_EQ(before.dataAt(1), QByteArray());
    EXPECT_EQ(before.sectionStartIndex(2), -1);
    EXPECT_EQ(before.dataAt(2), fromHex("01"));
    EXPECT_EQ(before.dataAt(3), fromHex("02 03"));
}
