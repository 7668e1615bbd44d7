#include "tests/support/driver_test.h"

#include <limits>

// What the entries append to the text of a failure.

namespace
{

class CommError : public DriverTest
{
protected:
    std::string textOfRead(int dataType, const std::string &address, int count)
    {
        EXPECT_TRUE(read(dataType, address.c_str(), count).isEmpty());
        return error();
    }

    std::string textOfWrite(int dataType, const std::string &address, int count)
    {
        EXPECT_FALSE(write(dataType, address.c_str(), count, QByteArray()));
        return error();
    }
};

// The text with the address in place of each "@".
std::string filled(std::string text, const std::string &address)
{
    for (size_t at = text.find('@'); at != std::string::npos; at = text.find('@'))
        text.replace(at, 1, address);
    return text;
}

} // namespace

TEST_F(CommError, ReadDetailsOfEachKind)
{
    EXPECT_EQ(textOfRead(BitItem, "DO5", 9), "PLC no response (read 9 bit(s) from 1-DO5)");
    EXPECT_EQ(textOfRead(ByteItem, "HR7", 3), "PLC no response (read 3 byte(s) from 1-HR7)");
    EXPECT_EQ(textOfRead(WordItem, "HR100", 10), "PLC no response (read 10 word(s) from 1-HR100)");
    EXPECT_EQ(textOfRead(DoubleWordItem, "IR1", 2), "PLC no response (read 2 dword(s) from 1-IR1)");
    EXPECT_EQ(textOfRead(BlockItem, "HR7", 3), "PLC no response");
    EXPECT_EQ(textOfRead(SecondBitItem, "DO5", 1), "PLC no response");
}

TEST_F(CommError, WriteDetailsOfEachKind)
{
    channel.station = 3;
    EXPECT_EQ(textOfWrite(BitItem, "DO5", 1), "PLC no response (write 1 bit to 3-DO5)");
    EXPECT_EQ(textOfWrite(ByteItem, "HR7", 3), "PLC no response (write 3 byte to 3-HR7)");
    EXPECT_EQ(textOfWrite(WordItem, "HR100", 10), "PLC no response (write 10 word to 3-HR100)");
    EXPECT_EQ(textOfWrite(DoubleWordItem, "FN6HR1", 2), "PLC no response (write 2 dword to 3-FN6HR1)");
    EXPECT_EQ(textOfWrite(BlockItem, "HR7", 3), "PLC no response");
    EXPECT_EQ(textOfWrite(SecondBitItem, "DO5", 1), "PLC no response");
}

TEST_F(CommError, StationIsTheLowByte)
{
    const struct {
        int station;
        const char *shown;
    } stations[] = {{0, "0"}, {255, "255"}, {256, "0"}, {511, "255"}, {-1, "255"}, {-256, "0"}};
    for (const auto &s : stations) {
        channel.station = s.station;
        const std::string place = s.shown + std::string("-HR1)");
        EXPECT_EQ(textOfRead(WordItem, "HR1", 1), "PLC no response (read 1 word(s) from " + place);
        EXPECT_EQ(textOfWrite(WordItem, "HR1", 1), "PLC no response (write 1 word to " + place);
    }
}

TEST_F(CommError, CountIsSigned)
{
    EXPECT_EQ(textOfRead(WordItem, "IR2", -1), "can't read any word from IR2 (read -1 word(s) from 1-IR2)");
    EXPECT_EQ(textOfRead(WordItem, "IR2", std::numeric_limits<int>::min()),
              "can't read any word from IR2 (read -2147483648 word(s) from 1-IR2)");
    EXPECT_EQ(textOfWrite(BitItem, "DO2", std::numeric_limits<int>::max()),
              "can't write 2147483647 bits to DO2 (write 2147483647 bit to 1-DO2)");
}

TEST_F(CommError, AddressTextsComeThroughUnchanged)
{
    const std::string odd[] = {"HR1.3 %s%n%d", "HR1%1%2%3%4%5%99", "hr1 (\xC3\xA9\xE2\x82\xAC)", "HR1)",
                               "HR1" + std::string(600, 'x')};
    for (const std::string &address : odd) {
        EXPECT_EQ(textOfRead(WordItem, address, 1),
                  "PLC no response (read 1 word(s) from 1-" + address + ")");
        EXPECT_EQ(textOfWrite(WordItem, address, 1), "PLC no response (write 1 word to 1-" + address + ")");
        EXPECT_EQ(textOfRead(EightByteItem, address, 1), "unsupported data type: " + address);
        EXPECT_EQ(textOfWrite(EightByteItem, address, 1), "unsupported data type: " + address);
    }
}

TEST_F(CommError, AreasComeThroughUnchanged)
{
    const std::string lastOfLatin1("FN\xC3\xBF");
    for (const std::string &area :
         {std::string("F%s"), std::string("F%1"), std::string("F%%"), lastOfLatin1, std::string(600, 'q')}) {
        const std::string address = area + '9';
        EXPECT_EQ(textOfRead(WordItem, address, 126),
                  filled("can't read any word from @ (read 126 word(s) from 1-@)", address));
        EXPECT_EQ(textOfRead(DoubleWordItem, address, 63),
                  filled("can't read any double word from @ (read 63 dword(s) from 1-@)", address));
        EXPECT_EQ(textOfWrite(WordItem, address, 1),
                  filled("can't write any word to @ (write 1 word to 1-@)", address));
        EXPECT_EQ(textOfWrite(BitItem, address, 1),
                  filled("can't write any bit to @ (write 1 bit to 1-@)", address));
    }
    EXPECT_EQ(textOfRead(BitItem, "DO%s%1", 2009),
              "can't read 2009 bits from DO65536 (read 2009 bit(s) from 1-DO%s%1)");
}

TEST_F(CommError, DetailsAreAppendedOnceAfterTheLastAttempt)
{
    channel.retries = 3;
    EXPECT_EQ(textOfRead(WordItem, "HR1", 1), "PLC no response (read 1 word(s) from 1-HR1)");
    EXPECT_EQ(textOfWrite(WordItem, "HR1", 1), "PLC no response (write 1 word to 1-HR1)");
    EXPECT_EQ(channel.requests().size(), 8);
}

TEST_F(CommError, TextsOfTheChannelComeThroughUnchanged)
{
    channel.errorText = QString::fromLatin1("%1 %s\n") + QString(600, QLatin1Char('e'));
    const std::string text = "%1 %s\n" + std::string(600, 'e');
    channel.fail(ScriptedChannel::WriteData, 1, 0);
    EXPECT_EQ(textOfRead(WordItem, "HR1", 1), text + " (read 1 word(s) from 1-HR1)");
    channel.fail(ScriptedChannel::WriteData, 1, 0);
    EXPECT_EQ(textOfWrite(WordItem, "HR1", 1), text + " (write 1 word to 1-HR1)");
    channel.fail(ScriptedChannel::Open, 1);
    EXPECT_EQ(textOfRead(WordItem, "HR1", 1), text);
}
