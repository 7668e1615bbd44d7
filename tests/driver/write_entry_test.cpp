#include "tests/support/driver_test.h"

#include <algorithm>
#include <limits>
#include <sys/resource.h>

namespace
{

const char WriteRequest[] = "write(01 10 00 00 00 01 02 12 34 ab 27)";

class WriteEntry : public DriverTest
{
protected:
    bool writeWord() { return write(WordItem, "HR1", 1, fromHex("34 12")); }
};

} // namespace

TEST_F(WriteEntry, SilentSlaveIsAskedOnceMoreForEachRetry)
{
    channel.delay = 20;
    for (const int retries : {std::numeric_limits<int>::min(), -1, 0, 1, 2, 3}) {
        const int attempts = std::max(retries, 0) + 1;
        channel.retries = retries;
        channel.connected = false;
        channel.forgetCalls();
        const size_t pausesBefore = pauses.sleeps().size();
        EXPECT_FALSE(writeWord());
        EXPECT_EQ(error(), "PLC no response (write 1 word to 1-HR1)");
        EXPECT_EQ(
            channel.trace(),
            repeated(std::string("delayTime isConnected open ") + WriteRequest + " read(5) close", attempts));
        EXPECT_EQ(pauses.sleeps().size() - pausesBefore, static_cast<size_t>(attempts));
    }
    EXPECT_EQ(pauses.sleeps().back(), 20000000);
}

TEST_F(WriteEntry, StopsAtTheFirstSuccess)
{
    channel.retries = 3;
    channel.addReply(QByteArray());
    channel.addReply(framed("01 10 00 00 00 01"));
    EXPECT_TRUE(writeWord());
    EXPECT_EQ(error(), NoError);
    const std::string sent = WriteRequest;
    EXPECT_EQ(channel.trace(), "delayTime isConnected " + sent + " read(5) close " +
                                   "delayTime isConnected open " + sent + " read(5) read(3)");
}

TEST_F(WriteEntry, LastAttemptGivesTheText)
{
    channel.retries = 1;
    channel.addReply(framed("01 90 02"));
    channel.addReply(framed("01 06 00 00 00 01"));
    EXPECT_FALSE(writeWord());
    EXPECT_EQ(error(), "invalid response (write 1 word to 1-HR1)");
}

TEST_F(WriteEntry, FailedOpenEndsTheWrite)
{
    channel.connected = false;
    channel.retries = 3;
    channel.errorText = QLatin1String("connection refused");
    channel.fail(ScriptedChannel::Open, 1);
    EXPECT_FALSE(writeWord());
    EXPECT_EQ(error(), "connection refused");
    EXPECT_EQ(channel.trace(), "delayTime isConnected open errorString");
}

TEST_F(WriteEntry, FailedReopenEndsTheWriteOfARetry)
{
    channel.retries = 3;
    channel.connected = false;
    channel.fail(ScriptedChannel::Open, 2);
    EXPECT_FALSE(writeWord());
    EXPECT_EQ(error(), "channel error");
    EXPECT_EQ(channel.requests().size(), 1);
}

TEST_F(WriteEntry, UnsupportedKindsAreNotTriedAgain)
{
    channel.retries = 3;
    channel.delay = 5;
    for (const int kind : UnsupportedKinds) {
        channel.forgetCalls();
        EXPECT_FALSE(write(kind, "HR1", 1, fromHex("34 12")));
        EXPECT_EQ(error(), "unsupported data type: HR1") << kind;
        EXPECT_EQ(channel.trace(), "delayTime isConnected");
    }
    EXPECT_EQ(pauses.sleeps().size(), sizeof UnsupportedKinds / sizeof *UnsupportedKinds);
}

TEST_F(WriteEntry, UnsupportedKindOpensTheChannelFirst)
{
    channel.connected = false;
    EXPECT_FALSE(write(EightByteItem, "HR1", 1, QByteArray()));
    EXPECT_EQ(error(), "unsupported data type: HR1");
    EXPECT_EQ(channel.trace(), "delayTime isConnected open");
}

TEST_F(WriteEntry, AreasWithoutWriterAreRetried)
{
    const struct {
        int kind;
        const char *address;
        const char *text;
    } areas[] = {
        {BitItem, "DI5", "can't write any bit to DI5 (write 1 bit to 1-DI5)"},
        {SecondBitItem, "IR5.3", "can't write any bit to IR5.3"},
        {BitItem, "5", "can't write any bit to 5 (write 1 bit to 1-5)"},
        {BitItem, "FN6DO5", "can't write any bit to FN6DO5 (write 1 bit to 1-FN6DO5)"},
        {BitItem, "FN5HR5", "can't write any bit to FN5HR5 (write 1 bit to 1-FN5HR5)"},
        {ByteItem, "IR5", "can't write any byte to IR5 (write 1 byte to 1-IR5)"},
        {BlockItem, "DO5", "can't write any byte to DO5"},
        {ByteItem, "", "can't write any byte to  (write 1 byte to 1-)"},
        {WordItem, "IR5", "can't write any word to IR5 (write 1 word to 1-IR5)"},
        {WordItem, "SW5", "can't write any word to SW5 (write 1 word to 1-SW5)"},
        {WordItem, "FN5HR", "can't write any word to FN5HR (write 1 word to 1-FN5HR)"},
        {DoubleWordItem, "FN5DO5", "can't write any double word to FN5DO5 (write 1 dword to 1-FN5DO5)"},
        {DoubleWordItem, "sw5", "can't write any double word to sw5 (write 1 dword to 1-sw5)"},
        {DoubleWordItem, "XHR5", "can't write any double word to XHR5 (write 1 dword to 1-XHR5)"}};
    channel.retries = 2;
    channel.delay = 7;
    for (const auto &area : areas) {
        channel.forgetCalls();
        EXPECT_FALSE(write(area.kind, area.address, 1, fromHex("01 00 00 00")));
        EXPECT_EQ(error(), area.text);
        EXPECT_EQ(channel.trace(), repeated("delayTime isConnected", 3));
    }
    EXPECT_EQ(pauses.sleeps(), std::vector<qint64>(3 * sizeof areas / sizeof *areas, 7000000));
}

TEST_F(WriteEntry, CommandsThatNoWriterTakesAreRetried)
{
    const int max = std::numeric_limits<int>::max();
    const struct {
        int kind;
        const char *address;
        int count;
        const char *text;
    } commands[] = {
        {1, "HR1", 247, "can't write any byte to HR1 (write 247 byte to 1-HR1)"},
        {1, "FN6HR1", 251, "can't write any byte to HR1 (write 251 byte to 1-FN6HR1)"},
        {5, "HR1", -1, "can't write any byte to HR1"},
        {2, "HR7", 124, "can't write any word to HR7 (write 124 word to 1-HR7)"},
        {2, "FN6HR7", max, "can't write any word to HR7 (write 2147483647 word to 1-FN6HR7)"},
        {3, "HR1", 62, "can't write any double word to HR1 (write 62 dword to 1-HR1)"},
        {3, "HRSW1", -1, "can't write any double word to HR1 (write -1 dword to 1-HRSW1)"},
        {0, "DO1", 1977, "can't write 1977 bits to DO1 (write 1977 bit to 1-DO1)"},
        {6, "FN5DO1", max, "can't write 2147483647 bits to DO1"},
        {0, "HR7.1", 2000, "can't read any word from HR7 (write 2000 bit to 1-HR7.1)"},
        {6, "FN6HR7", max, "can't read any word from HR7"},
    };
    channel.retries = 2;
    channel.delay = 7;
    for (const auto &command : commands) {
        channel.forgetCalls();
        channel.connected = false;
        EXPECT_FALSE(write(command.kind, command.address, command.count, fromHex("01")));
        EXPECT_EQ(error(), command.text);
        EXPECT_EQ(channel.trace(), "delayTime isConnected open delayTime isConnected delayTime isConnected");
    }
    EXPECT_EQ(pauses.sleeps(), std::vector<qint64>(3 * sizeof commands / sizeof *commands, 7000000));
}

TEST_F(WriteEntry, AreaIsRefusedBeforeTheCount)
{
    EXPECT_FALSE(write(WordItem, "IR1", std::numeric_limits<int>::max(), QByteArray()));
    EXPECT_EQ(error(), "can't write any word to IR1 (write 2147483647 word to 1-IR1)");
    EXPECT_FALSE(write(BitItem, "DI1", std::numeric_limits<int>::min(), QByteArray()));
    EXPECT_EQ(error(), "can't write any bit to DI1 (write -2147483648 bit to 1-DI1)");
}

TEST_F(WriteEntry, WithoutDatabaseNothingIsTried)
{
    DriverModbusRtuSlaveOverTcp unloaded;
    channel.connected = false;
    EXPECT_FALSE(unloaded.write(&channel, makeCommand(WordItem, QLatin1String("HR1"), 1), fromHex("34 12")));
    EXPECT_EQ(unloaded.getLastError(), QString(QLatin1String(CanNotOpen)));
    EXPECT_EQ(channel.trace(), "");
    EXPECT_EQ(channel.count(ScriptedChannel::GetDeviceSetting), 1);
}

TEST_F(WriteEntry, SettingIsAskedOnlyWhileTheDatabaseIsNotLoaded)
{
    EXPECT_FALSE(writeWord());
    EXPECT_EQ(channel.count(ScriptedChannel::GetDeviceSetting), 0);
}

namespace
{

struct Dispatch {
    int dataType;
    const char *address;
    int count;
    const char *data;
    const char *firstRequest;
};

const Dispatch bitWrites[] = {
    {BitItem, "DO3", 3, "05", "01 0F 00 02 00 03 01 05"},
    {SecondBitItem, "doX3", 3, "05", "01 0F 00 02 00 03 01 05"},
    {BitItem, "DO3.2", 3, "05", "01 0F 00 02 00 03 01 05"},
    {BitItem, "FN5DO3", 3, "05", "01 05 00 02 FF 00"},
    {SecondBitItem, "fn5doX3", 3, "05", "01 05 00 02 FF 00"},
    {BitItem, "HR3.2", 3, "05", "01 03 00 02 00 01"},
    {SecondBitItem, "hrX3.15", 3, "05", "01 03 00 02 00 02"},
    {BitItem, "FN6HR3.2", 3, "05", "01 03 00 02 00 01"},
    {SecondBitItem, "Fn6HrX3.15", 3, "05", "01 03 00 02 00 02"},
};

const Dispatch registerWrites[] = {
    {ByteItem, "HR3", 3, "11 22 33", "01 10 00 02 00 02 04 22 11 00 33"},
    {BlockItem, "hrX3", 3, "11 22 33", "01 10 00 02 00 02 04 22 11 00 33"},
    {ByteItem, "FN6HR3", 3, "11 22 33", "01 06 00 02 22 11"},
    {BlockItem, "fn6hrX3", 3, "11 22 33", "01 06 00 02 22 11"},
    {WordItem, "HR3", 2, "11 22 33 44", "01 10 00 02 00 02 04 22 11 44 33"},
    {WordItem, "hRsW3.7", 2, "11 22 33 44", "01 10 00 02 00 02 04 22 11 44 33"},
    {WordItem, "FN6HR3", 2, "11 22 33 44", "01 06 00 02 22 11"},
    {WordItem, "fn6hrX3", 2, "11 22 33 44", "01 06 00 02 22 11"},
    {DoubleWordItem, "HR3", 1, "11 22 33 44", "01 10 00 02 00 02 04 22 11 44 33"},
    {DoubleWordItem, "HRSW3", 1, "11 22 33 44", "01 10 00 02 00 02 04 44 33 22 11"},
    {DoubleWordItem, "hr3 sw", 1, "11 22 33 44", "01 10 00 02 00 02 04 44 33 22 11"},
    {DoubleWordItem, "FN6HR3", 1, "11 22 33 44", "01 06 00 02 22 11"},
    {DoubleWordItem, "fn6hrsw3", 1, "11 22 33 44", "01 06 00 02 44 33"},
};

void PrintTo(const Dispatch &d, std::ostream *out)
{
    *out << "kind " << d.dataType << " at " << d.address;
}

class WriteDispatch : public WriteEntry, public testing::WithParamInterface<Dispatch>
{
};

} // namespace

TEST_P(WriteDispatch, SendsTheRequestOfItsWriter)
{
    const Dispatch &d = GetParam();
    EXPECT_FALSE(write(d.dataType, d.address, d.count, fromHex(d.data)));
    EXPECT_EQ(channel.requests(), QList<QByteArray>() << framed(d.firstRequest));
}

INSTANTIATE_TEST_SUITE_P(Bits, WriteDispatch, testing::ValuesIn(bitWrites));
INSTANTIATE_TEST_SUITE_P(Registers, WriteDispatch, testing::ValuesIn(registerWrites));

// The command says how much is written; the host's data is padded with zeros or cut to it.
TEST_F(WriteEntry, DataIsSizedByTheCommand)
{
    const struct {
        int dataType;
        const char *address;
        int count;
        const char *data;
        const char *request;
    } sizes[] = {{WordItem, "HR1", 2, "01 02 03", "01 10 00 00 00 02 04 02 01 00 03"},
                 {WordItem, "HR1", 2, "", "01 10 00 00 00 02 04 00 00 00 00"},
                 {WordItem, "HR1", 2, "01 02 03 04 05 06", "01 10 00 00 00 02 04 02 01 04 03"},
                 {DoubleWordItem, "HR1", 1, "01", "01 10 00 00 00 02 04 00 01 00 00"},
                 {DoubleWordItem, "SWHR1", 1, "01", nullptr},
                 {DoubleWordItem, "HRSW1", 1, "01 02 03 04 05", "01 10 00 00 00 02 04 04 03 02 01"},
                 {ByteItem, "HR1", 1, "01 02", "01 10 00 00 00 01 02 00 01"},
                 {BlockItem, "HR1", 4, "01 02", "01 10 00 00 00 02 04 02 01 00 00"},
                 {BitItem, "DO1", 9, "FF", "01 0F 00 00 00 09 02 FF 00"},
                 {SecondBitItem, "DO1", 8, "AA BB", "01 0F 00 00 00 08 01 AA"},
                 {BitItem, "DO1", 9, "AA FF CC", "01 0F 00 00 00 09 02 AA FF"}};
    for (const auto &size : sizes) {
        channel.forgetCalls();
        write(size.dataType, size.address, size.count, fromHex(size.data));
        const QList<QByteArray> expected =
            size.request != nullptr ? QList<QByteArray>() << framed(size.request) : QList<QByteArray>();
        EXPECT_EQ(channel.requests(), expected);
    }
}

// What will be refused is not first built in full.
TEST_F(WriteEntry, HugeCountsTakeNoMemory)
{
    const auto peakKilobytes = [] {
        struct rusage usage = {};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;
    };
    const long before = peakKilobytes();
    for (const int count : {std::numeric_limits<int>::min(), -1, 0x10000000, 0x20000001, 0x40000001,
                            std::numeric_limits<int>::max()})
        for (int kind = BitItem; kind <= SecondBitItem + 2; ++kind)
            for (const char *address : {"HR1", "FN6HR1", "DO1", "FN5DO1", "DI1"})
                EXPECT_FALSE(write(kind, address, count, fromHex("01")));
    EXPECT_LT(peakKilobytes() - before, 32 * 1024);
    EXPECT_TRUE(isSilent());
}

TEST_F(WriteEntry, DataOfTheHostIsLeftAlone)
{
    const char bytes[] = {1, 2, 3, 4};
    for (const char *address : {"HRSW1", "FN6HR1"})
        write(DoubleWordItem, address, 1, QByteArray::fromRawData(bytes, 4));
    write(BitItem, "HR1.3", 20, QByteArray::fromRawData(bytes, 4));
    EXPECT_EQ(QByteArray(bytes, 4), fromHex("01 02 03 04"));
}
