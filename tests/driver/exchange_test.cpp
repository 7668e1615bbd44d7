#include "tests/support/driver_test.h"

// One exchange as every reader and writer makes it, seen through one of each.

namespace
{

class Exchange : public DriverTest
{
protected:
    QByteArray readOne(const QByteArray &reply)
    {
        channel.addReply(reply);
        return read(WordItem, "HR1", 1);
    }

    bool writeOne(const QByteArray &reply)
    {
        channel.addReply(reply);
        return write(WordItem, "HR1", 1, fromHex("34 12"));
    }

    bool isOpen() const { return channel.connected; }
};

std::string readText(const std::string &text)
{
    return text + " (read 1 word(s) from 1-HR1)";
}

std::string writeText(const std::string &text)
{
    return text + " (write 1 word to 1-HR1)";
}

} // namespace

TEST_F(Exchange, ReadsFiveBytesThenTheRest)
{
    EXPECT_EQ(readOne(framed("01 03 02 12 34")), fromHex("34 12"));
    EXPECT_EQ(error(), NoError);
    EXPECT_EQ(channel.trace(), "delayTime isConnected write(01 03 00 00 00 01 84 0a) read(5) read(2)");
}

TEST_F(Exchange, WritesAndReadsTheEchoInTwoStages)
{
    EXPECT_TRUE(writeOne(fieldsFrame(1, 16, 0, 1)));
    EXPECT_EQ(error(), NoError);
    EXPECT_EQ(channel.trace(),
              "delayTime isConnected write(01 10 00 00 00 01 02 12 34 ab 27) read(5) read(3)");
}

TEST_F(Exchange, NoReply)
{
    EXPECT_EQ(readOne(QByteArray()), QByteArray());
    EXPECT_EQ(error(), readText("PLC no response"));
    EXPECT_EQ(channel.trace(), "delayTime isConnected write(01 03 00 00 00 01 84 0a) read(5) close");
}

TEST_F(Exchange, NoReplyToAWrite)
{
    EXPECT_FALSE(writeOne(QByteArray()));
    EXPECT_EQ(error(), writeText("PLC no response"));
    EXPECT_FALSE(isOpen());
}

TEST_F(Exchange, NegativeNumberOfBytesIsNoReply)
{
    channel.fail(ScriptedChannel::ReadData, 1, -1);
    EXPECT_EQ(readOne(framed("01 03 02 12 34")), QByteArray());
    EXPECT_EQ(error(), readText("PLC no response"));
    EXPECT_FALSE(isOpen());
}

TEST_F(Exchange, FirstStageOfOtherThanFiveBytes)
{
    const QByteArray whole = framed("01 03 02 12 34");
    for (int size = 1; size < 5; ++size) {
        channel.connected = true;
        EXPECT_EQ(readOne(whole.left(size)), QByteArray());
        EXPECT_EQ(error(), readText("received bytes < 5")) << size;
        EXPECT_FALSE(isOpen());
    }
    channel.connected = true;
    channel.fail(ScriptedChannel::ReadData, 1, 6);
    EXPECT_EQ(readOne(whole), QByteArray());
    EXPECT_EQ(error(), readText("received bytes < 5"));
    EXPECT_FALSE(isOpen());
}

TEST_F(Exchange, ForeignStationLeavesTheChannelOpen)
{
    for (const int station : {0, 2, 129, 255}) {
        EXPECT_EQ(readOne(readReply(station, 3, fromHex("12 34"))), QByteArray());
        EXPECT_EQ(error(), readText("invalid slave id:" + std::to_string(station))) << station;
        EXPECT_TRUE(isOpen());
    }
    EXPECT_EQ(channel.count(ScriptedChannel::Close), 0);
    EXPECT_EQ(channel.readLengths(), (std::vector<int>{5, 5, 5, 5}));
}

TEST_F(Exchange, StationAboveEightBitsNeverMatches)
{
    channel.station = 257;
    EXPECT_EQ(readOne(framed("01 03 02 12 34")), QByteArray());
    EXPECT_EQ(channel.requests().at(0), framed("01 03 00 00 00 01"));
    EXPECT_EQ(error(), readText("invalid slave id:1"));
    EXPECT_TRUE(isOpen());
}

TEST_F(Exchange, NegativeStationNeverMatches)
{
    channel.station = -1;
    EXPECT_FALSE(writeOne(fieldsFrame(255, 16, 0, 1)));
    EXPECT_EQ(channel.requests().at(0), framed("FF 10 00 00 00 01 02 12 34"));
    EXPECT_EQ(error(), "invalid slave id:255 (write 1 word to 255-HR1)");
    EXPECT_TRUE(isOpen());
}

TEST_F(Exchange, ExceptionReply)
{
    EXPECT_EQ(readOne(framed("01 83 02")), QByteArray());
    EXPECT_EQ(error(), readText("exception code:0x02"));
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(channel.readLengths(), std::vector<int>{5});
}

TEST_F(Exchange, ExceptionCodesAreTwoUpperCaseDigits)
{
    const struct {
        int code;
        const char *text;
    } codes[] = {{0, "00"},  {1, "01"},  {9, "09"},   {10, "0A"},
                 {15, "0F"}, {16, "10"}, {171, "AB"}, {255, "FF"}};
    for (const auto &c : codes) {
        EXPECT_FALSE(writeOne(exceptionReply(1, 16, c.code)));
        EXPECT_EQ(error(), writeText(std::string("exception code:0x") + c.text));
        EXPECT_TRUE(isOpen());
    }
}

TEST_F(Exchange, ExceptionReplyWithWrongCrc)
{
    EXPECT_EQ(readOne(fromHex("01 83 02 00 00")), QByteArray());
    EXPECT_EQ(error(), readText("CRC error"));
    EXPECT_TRUE(isOpen());
}

TEST_F(Exchange, UnexpectedFunction)
{
    for (const int function : {0, 1, 4, 16, 0x7F, 0x80, 0x84, 0x90, 0xFF}) {
        EXPECT_EQ(readOne(readReply(1, function, fromHex("12 34"))), QByteArray());
        EXPECT_EQ(error(), readText("invalid response")) << function;
        EXPECT_TRUE(isOpen());
    }
    EXPECT_EQ(channel.readLengths(), std::vector<int>(9, 5));
}

TEST_F(Exchange, RestOfTheReplyIsShort)
{
    const QByteArray whole = framed("01 03 02 12 34");
    for (int size = 5; size < 7; ++size) {
        channel.connected = true;
        EXPECT_EQ(readOne(whole.left(size)), QByteArray());
        EXPECT_EQ(error(), readText("packet loss")) << size;
        EXPECT_FALSE(isOpen());
    }
    channel.connected = true;
    channel.fail(ScriptedChannel::ReadData, 2, -1);
    EXPECT_EQ(readOne(whole), QByteArray());
    EXPECT_EQ(error(), readText("packet loss"));
    EXPECT_FALSE(isOpen());
}

TEST_F(Exchange, RestOfTheEchoIsShort)
{
    const QByteArray whole = fieldsFrame(1, 16, 0, 1);
    for (int size = 5; size < 8; ++size) {
        channel.connected = true;
        EXPECT_FALSE(writeOne(whole.left(size)));
        EXPECT_EQ(error(), writeText("packet loss")) << size;
        EXPECT_FALSE(isOpen());
    }
}

TEST_F(Exchange, CrcErrorLeavesTheChannelOpen)
{
    EXPECT_EQ(readOne(fromHex("01 03 02 12 34 00 00")), QByteArray());
    EXPECT_EQ(error(), readText("CRC error"));
    EXPECT_FALSE(writeOne(fromHex("01 10 00 00 00 01 00 00")));
    EXPECT_EQ(error(), writeText("CRC error"));
    EXPECT_EQ(channel.count(ScriptedChannel::Close), 0);
    EXPECT_EQ(channel.readLengths(), (std::vector<int>{5, 2, 5, 3}));
}

TEST_F(Exchange, ShortSendTakesTheTextBeforeItCloses)
{
    channel.errorTextAfterClose = QLatin1String("closed");
    for (const int sent : {-1, 0, 7}) {
        channel.errorText = QLatin1String("send failed");
        channel.connected = true;
        channel.forgetCalls();
        channel.fail(ScriptedChannel::WriteData, 1, sent);
        EXPECT_EQ(readOne(QByteArray()), QByteArray());
        EXPECT_EQ(error(), readText("send failed"));
        EXPECT_EQ(channel.trace(), "delayTime isConnected write(01 03 00 00 00 01 84 0a) errorString close");
    }
}

TEST_F(Exchange, ShortSendOfAWrite)
{
    channel.errorTextAfterClose = QLatin1String("closed");
    channel.fail(ScriptedChannel::WriteData, 1, 10);
    EXPECT_FALSE(writeOne(QByteArray()));
    EXPECT_EQ(error(), writeText("channel error"));
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(channel.count(ScriptedChannel::ReadData), 0);
}

TEST_F(Exchange, ByteCountOfAReplyIsNotCompared)
{
    for (const char *reply : {"01 03 00 12 34", "01 03 04 12 34", "01 03 FF 12 34"})
        EXPECT_EQ(readOne(framed(reply)), fromHex("34 12"));
}

TEST_F(Exchange, FieldsOfAnEchoAreNotCompared)
{
    EXPECT_TRUE(writeOne(framed("01 10 FF FF 12 34")));
    EXPECT_EQ(error(), NoError);
}

// A channel that counts bytes which it never delivered must not make an earlier reply count again.
TEST_F(Exchange, BufferIsEmptyBeforeEachReply)
{
    channel.station = 0;
    EXPECT_EQ(readOne(framed("00 03 02 12 34")), fromHex("34 12"));
    channel.fail(ScriptedChannel::ReadData, 1, 5);
    channel.fail(ScriptedChannel::ReadData, 2, 2);
    EXPECT_EQ(readOne(QByteArray()), QByteArray());
    EXPECT_EQ(error(), "invalid response (read 1 word(s) from 0-HR1)");
}

TEST_F(Exchange, StationIsAskedAnewForEachRequest)
{
    channel.retries = 2;
    const auto silentAndRenamed = [this](const QByteArray &) {
        ++channel.station;
        return QByteArray();
    };
    channel.setResponder(silentAndRenamed);
    EXPECT_EQ(read(WordItem, "HR1", 1), QByteArray());
    const QList<QByteArray> sent = channel.requests();
    ASSERT_EQ(sent.size(), 3);
    EXPECT_EQ(sent.at(0), framed("01 03 00 00 00 01"));
    EXPECT_EQ(sent.at(1), framed("02 03 00 00 00 01"));
    EXPECT_EQ(sent.at(2), framed("03 03 00 00 00 01"));
    EXPECT_EQ(error(), "PLC no response (read 1 word(s) from 4-HR1)");
}

// A channel that says it placed or sent more than it was asked to breaks its contract; so does one that
// answers -1 when it is asked for nothing. docs/host-contract.md tells what comes of that.

TEST_F(Exchange, RestOfAReplyThatIsLongerThanAsked)
{
    for (const int received : {3, 4, 257, std::numeric_limits<int>::max()}) {
        channel.connected = true;
        channel.forgetCalls();
        channel.fail(ScriptedChannel::ReadData, 2, received);
        EXPECT_EQ(readOne(framed("01 03 02 12 34")), QByteArray());
        EXPECT_EQ(error(), readText("packet loss")) << received;
        EXPECT_EQ(channel.trace(),
                  "delayTime isConnected write(01 03 00 00 00 01 84 0a) read(5) read(2) close");
    }
}

TEST_F(Exchange, RestOfAnEchoThatIsLongerThanAsked)
{
    channel.fail(ScriptedChannel::ReadData, 2, 4);
    EXPECT_FALSE(writeOne(fieldsFrame(1, 16, 0, 1)));
    EXPECT_EQ(error(), writeText("packet loss"));
    EXPECT_FALSE(isOpen());
}

TEST_F(Exchange, SendThatReportsMoreThanWasGiven)
{
    for (const int sent : {9, std::numeric_limits<int>::max()}) {
        channel.connected = true;
        channel.forgetCalls();
        channel.fail(ScriptedChannel::WriteData, 1, sent);
        EXPECT_EQ(readOne(QByteArray()), QByteArray());
        EXPECT_EQ(error(), readText("channel error")) << sent;
        EXPECT_EQ(channel.trace(), "delayTime isConnected write(01 03 00 00 00 01 84 0a) errorString close");
    }
}

TEST_F(Exchange, NothingAskedForIsAnsweredWithNothing)
{
    channel.addReply(framed("01 03 00"));
    EXPECT_EQ(read(WordItem, "HR1", 0), QByteArray());
    EXPECT_EQ(error(), NoError);
    EXPECT_EQ(channel.readLengths(), (std::vector<int>{5, 0}));

    channel.addReply(framed("01 03 00"));
    channel.fail(ScriptedChannel::ReadData, 2, -1);
    EXPECT_EQ(read(WordItem, "HR1", 0), QByteArray());
    EXPECT_EQ(error(), "packet loss (read 0 word(s) from 1-HR1)");
    EXPECT_FALSE(isOpen());
}
