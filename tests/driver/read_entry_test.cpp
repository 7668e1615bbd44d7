#include "tests/support/driver_test.h"

#include <limits>

namespace
{

const char ReadRequest[] = "write(01 03 00 00 00 01 84 0a)";

class ReadEntry : public DriverTest
{
protected:
    std::vector<qint64> pausesOf(int number, qint64 milliseconds) const
    {
        return std::vector<qint64>(static_cast<size_t>(number), milliseconds * 1000000);
    }
};

} // namespace

TEST_F(ReadEntry, SilentSlaveIsAskedOnceMoreForEachRetry)
{
    for (const int retries : {std::numeric_limits<int>::min(), -1, 0, 1, 2, 3}) {
        const int attempts = std::max(retries, 0) + 1;
        channel.retries = retries;
        channel.connected = false;
        channel.delay = 20;
        channel.forgetCalls();
        const size_t pausesBefore = pauses.sleeps().size();
        EXPECT_EQ(read(WordItem, "HR1", 1), QByteArray());
        EXPECT_EQ(error(), "PLC no response (read 1 word(s) from 1-HR1)");
        EXPECT_EQ(
            channel.trace(),
            repeated(std::string("delayTime isConnected open ") + ReadRequest + " read(5) close", attempts));
        EXPECT_EQ(pauses.sleeps().size() - pausesBefore, static_cast<size_t>(attempts));
    }
}

TEST_F(ReadEntry, PausesBeforeEveryAttempt)
{
    channel.retries = 2;
    channel.delay = 250;
    read(WordItem, "HR1", 1);
    EXPECT_EQ(pauses.sleeps(), pausesOf(3, 250));
    EXPECT_EQ(channel.count(ScriptedChannel::DelayTime), 3);
}

TEST_F(ReadEntry, NoPauseWithoutDelay)
{
    channel.retries = 2;
    read(WordItem, "HR1", 1);
    EXPECT_TRUE(pauses.sleeps().empty());
}

TEST_F(ReadEntry, DelayIsAskedAnewForEachAttempt)
{
    channel.retries = 1;
    channel.delay = 10;
    channel.setResponder([this](const QByteArray &) {
        channel.delay = 30;
        return QByteArray();
    });
    read(WordItem, "HR1", 1);
    EXPECT_EQ(pauses.sleeps(), (std::vector<qint64>{10000000, 30000000}));
}

TEST_F(ReadEntry, RetryCountIsAskedAfterEachFailure)
{
    channel.retries = 1;
    channel.setResponder([this](const QByteArray &) {
        channel.retries = 0;
        return QByteArray();
    });
    read(WordItem, "HR1", 1);
    EXPECT_EQ(channel.requests().size(), 1);
}

TEST_F(ReadEntry, StopsAtTheFirstSuccess)
{
    channel.retries = 3;
    channel.addReply(QByteArray());
    channel.addReply(fromHex("01 03 02 12 34 00 00"));
    channel.addReply(framed("01 03 02 12 34"));
    EXPECT_EQ(read(WordItem, "HR1", 1), fromHex("34 12"));
    EXPECT_EQ(error(), NoError);
    const std::string sent = ReadRequest;
    EXPECT_EQ(channel.trace(), "delayTime isConnected " + sent + " read(5) close " +
                                   "delayTime isConnected open " + sent + " read(5) read(2) " +
                                   "delayTime isConnected " + sent + " read(5) read(2)");
}

TEST_F(ReadEntry, LastAttemptGivesTheText)
{
    channel.retries = 2;
    channel.addReply(QByteArray());
    channel.addReply(framed("01 83 02"));
    channel.addReply(framed("02 03 02 12 34"));
    EXPECT_EQ(read(WordItem, "HR1", 1), QByteArray());
    EXPECT_EQ(error(), "invalid slave id:2 (read 1 word(s) from 1-HR1)");
}

TEST_F(ReadEntry, OpensAClosedChannel)
{
    channel.connected = false;
    channel.addReply(framed("01 03 02 12 34"));
    EXPECT_EQ(read(WordItem, "HR1", 1), fromHex("34 12"));
    EXPECT_EQ(channel.trace(), std::string("delayTime isConnected open ") + ReadRequest + " read(5) read(2)");
}

TEST_F(ReadEntry, FailedOpenEndsTheRead)
{
    channel.connected = false;
    channel.retries = 3;
    channel.errorText = QLatin1String("connection refused");
    channel.fail(ScriptedChannel::Open, 1);
    EXPECT_EQ(read(WordItem, "HR1", 1), QByteArray());
    EXPECT_EQ(error(), "connection refused");
    EXPECT_EQ(channel.trace(), "delayTime isConnected open errorString");
}

TEST_F(ReadEntry, FailedReopenEndsTheReadOfARetry)
{
    channel.retries = 3;
    channel.fail(ScriptedChannel::Open, 2);
    channel.connected = false;
    EXPECT_EQ(read(WordItem, "HR1", 1), QByteArray());
    EXPECT_EQ(error(), "channel error");
    EXPECT_EQ(channel.requests().size(), 1);
    EXPECT_EQ(channel.count(ScriptedChannel::DelayTime), 2);
}

TEST_F(ReadEntry, UnsupportedKindsAreNotTriedAgain)
{
    channel.retries = 3;
    channel.delay = 5;
    for (const int kind : UnsupportedKinds) {
        channel.forgetCalls();
        EXPECT_EQ(read(kind, "HR1", 1), QByteArray());
        EXPECT_EQ(error(), "unsupported data type: HR1") << kind;
        EXPECT_EQ(channel.trace(), "delayTime isConnected");
    }
    EXPECT_EQ(pauses.sleeps().size(), sizeof UnsupportedKinds / sizeof *UnsupportedKinds);
}

TEST_F(ReadEntry, UnsupportedKindOpensTheChannelFirst)
{
    channel.connected = false;
    read(EightByteItem, "HR1", 1);
    EXPECT_EQ(error(), "unsupported data type: HR1");
    EXPECT_EQ(channel.trace(), "delayTime isConnected open");
    channel.connected = false;
    channel.fail(ScriptedChannel::Open, 1);
    read(EightByteItem, "HR1", 1);
    EXPECT_EQ(error(), "channel error");
}

TEST_F(ReadEntry, RangeRefusalsAreRetriedAndSendNothing)
{
    channel.retries = 2;
    channel.delay = 5;
    EXPECT_EQ(read(WordItem, "HR1", 126), QByteArray());
    EXPECT_EQ(error(), "can't read any word from HR1 (read 126 word(s) from 1-HR1)");
    EXPECT_EQ(channel.trace(), repeated("delayTime isConnected", 3));
    EXPECT_EQ(pauses.sleeps(), pausesOf(3, 5));
}

TEST_F(ReadEntry, SettingIsAskedOnlyWhileTheDatabaseIsNotLoaded)
{
    read(WordItem, "HR1", 1);
    EXPECT_EQ(channel.count(ScriptedChannel::GetDeviceSetting), 0);
    DriverModbusRtuSlaveOverTcp other;
    other.read(&channel, makeCommand(WordItem, QLatin1String("HR1"), 1));
    EXPECT_EQ(channel.count(ScriptedChannel::GetDeviceSetting), 1);
}

TEST_F(ReadEntry, WithoutDatabaseNothingIsTried)
{
    DriverModbusRtuSlaveOverTcp unloaded;
    channel.connected = false;
    EXPECT_EQ(unloaded.read(&channel, makeCommand(WordItem, QLatin1String("HR1"), 1)), QByteArray());
    EXPECT_TRUE(unloaded.hasError());
    EXPECT_EQ(unloaded.getLastError(), QString(QLatin1String(CanNotOpen)));
    EXPECT_EQ(channel.trace(), "");
}

namespace
{

struct Dispatch {
    int dataType;
    const char *address;
    int count;
    const char *request;
};

const char NothingSent[] = "";

const Dispatch bitReads[] = {
    {BitItem, "DO3", 9, "01 01 00 02 00 09"},
    {BitItem, "do3", 9, "01 01 00 02 00 09"},
    {BitItem, "DOX3", 9, "01 01 00 02 00 09"},
    {BitItem, "FN5DO3", 9, "01 01 00 02 00 09"},
    {SecondBitItem, "fn5doX3", 9, "01 01 00 02 00 09"},
    {BitItem, "DI3", 9, "01 02 00 02 00 09"},
    {SecondBitItem, "dIx3", 9, "01 02 00 02 00 09"},
    {BitItem, "DI3.7", 9, "01 02 00 02 00 09"},
    {BitItem, "HR5.3", 1, "01 03 00 04 00 01"},
    {BitItem, "HR5.15", 2, "01 03 00 04 00 02"},
    {SecondBitItem, "hrX5.3", 1, "01 03 00 04 00 01"},
    {BitItem, "FN6HR5.3", 1, "01 03 00 04 00 01"},
    {SecondBitItem, "fn6hrX5", 1, "01 03 00 04 00 01"},
    {BitItem, "IR5.3", 1, "01 04 00 04 00 01"},
    {BitItem, "D5", 1, "01 04 00 04 00 01"},
    {BitItem, "FN6DO5", 1, "01 04 00 04 00 01"},
    {BitItem, "FN5DI5", 1, "01 04 00 04 00 01"},
    {BitItem, "5", 1, "01 04 00 04 00 01"},
    {BitItem, "XDO5", 1, "01 04 00 04 00 01"},
    {SecondBitItem, "FN5D5", 1, "01 04 00 04 00 01"},
};

// Byte items ask the used bits of every area that is none of registers; the project has none here.
const Dispatch byteReads[] = {
    {ByteItem, "HR5", 3, "01 03 00 04 00 02"},
    {BlockItem, "hr5", 3, "01 03 00 04 00 02"},
    {ByteItem, "FN6HR5", 4, "01 03 00 04 00 02"},
    {BlockItem, "fn6Hr5", 1, "01 03 00 04 00 01"},
    {ByteItem, "IR5", 3, "01 04 00 04 00 02"},
    {BlockItem, "iR5", 3, "01 04 00 04 00 02"},
    {ByteItem, "HRX5", 3, NothingSent},
    {ByteItem, "SW5", 3, NothingSent},
    {BlockItem, "FN6HRX5", 3, NothingSent},
    {ByteItem, "IRX5", 3, NothingSent},
    {ByteItem, "DI5", 3, NothingSent},
    {ByteItem, "DO5", 3, NothingSent},
    {BlockItem, "5", 3, NothingSent},
};

const Dispatch wordReads[] = {
    {WordItem, "HR5", 3, "01 03 00 04 00 03"},         {WordItem, "hRx5", 3, "01 03 00 04 00 03"},
    {WordItem, "fn6hr5", 3, "01 03 00 04 00 03"},      {WordItem, "FN6HRX5", 3, "01 03 00 04 00 03"},
    {WordItem, "IR5", 3, "01 04 00 04 00 03"},         {WordItem, "DO5", 3, "01 04 00 04 00 03"},
    {WordItem, "DI5", 3, "01 04 00 04 00 03"},         {WordItem, "SW5", 3, "01 04 00 04 00 03"},
    {WordItem, "H5", 3, "01 04 00 04 00 03"},          {WordItem, "FN5DO5", 3, "01 04 00 04 00 03"},
    {WordItem, "5", 3, "01 04 00 04 00 03"},           {WordItem, "HR5.7", 3, "01 03 00 04 00 03"},
    {DoubleWordItem, "HR5", 3, "01 03 00 04 00 06"},   {DoubleWordItem, "SW5", 3, "01 04 00 04 00 06"},
    {DoubleWordItem, "HRSW5", 3, "01 03 00 04 00 06"}, {DoubleWordItem, "fn6hrsw5", 3, "01 03 00 04 00 06"},
    {DoubleWordItem, "DO5", 3, "01 04 00 04 00 06"},   {DoubleWordItem, "IR5", 3, "01 04 00 04 00 06"},
};

void PrintTo(const Dispatch &d, std::ostream *out)
{
    *out << "kind " << d.dataType << " at " << d.address;
}

class ReadDispatch : public ReadEntry, public testing::WithParamInterface<Dispatch>
{
};

} // namespace

TEST_P(ReadDispatch, SendsTheRequestOfItsReader)
{
    const Dispatch &d = GetParam();
    read(d.dataType, d.address, d.count);
    const QList<QByteArray> expected =
        *d.request != '\0' ? QList<QByteArray>() << framed(d.request) : QList<QByteArray>();
    EXPECT_EQ(channel.requests(), expected);
}

INSTANTIATE_TEST_SUITE_P(Bits, ReadDispatch, testing::ValuesIn(bitReads));
INSTANTIATE_TEST_SUITE_P(Bytes, ReadDispatch, testing::ValuesIn(byteReads));
INSTANTIATE_TEST_SUITE_P(Words, ReadDispatch, testing::ValuesIn(wordReads));

// With no used bit at all the station is unknown to the map: the text shows which of the two readers it was.
TEST_F(ReadEntry, BytesOfOtherAreasAreCoils)
{
    const struct {
        const char *address;
        const char *text;
    } areas[] = {{"DI5", "invalid address 1-DI"},    {"di5", "invalid address 1-DI"},
                 {"DO5", "invalid address 1-DO"},    {"SW5", "invalid address 1-DO"},
                 {"DIX5", "invalid address 1-DO"},   {"HRX5", "invalid address 1-DO"},
                 {"FN5DO5", "invalid address 1-DO"}, {"FN5DI5", "invalid address 1-DO"},
                 {"", "invalid address 1-DO"}};
    for (const auto &area : areas) {
        EXPECT_EQ(read(BlockItem, area.address, 1), QByteArray());
        EXPECT_EQ(error(), area.text) << area.address;
    }
}
