// Every beginning of a reply, and every change of one byte in a good one.

#include "tests/doubles/quick_channel.h"
#include "tests/support/driver_test.h"
#include "tests/support/part_of_all.h"

#include <cstring>

namespace
{

typedef QuickChannel::Frame Frame;

struct Request {
    int function;
    int dataType;
    const char *address;
    int count;
    int replySize; ///< without the CRC
    bool isWrite;
};

// The shortest, a middle and the longest request of each function; those of functions 5 and 6 are all of one
// length.
const Request Requests[] = {
    {1, SecondBitItem, "DO1", 1, 4, false},      {1, SecondBitItem, "DO1", 1000, 128, false},
    {1, SecondBitItem, "DO1", 2008, 254, false}, {2, SecondBitItem, "DI1", 1, 4, false},
    {2, SecondBitItem, "DI1", 1000, 128, false}, {2, SecondBitItem, "DI1", 2008, 254, false},
    {3, BlockItem, "HR1", 2, 5, false},          {3, BlockItem, "HR1", 126, 129, false},
    {3, BlockItem, "HR1", 250, 253, false},      {4, BlockItem, "IR1", 2, 5, false},
    {4, BlockItem, "IR1", 126, 129, false},      {4, BlockItem, "IR1", 250, 253, false},
    {5, SecondBitItem, "FN5DO1", 1, 6, true},    {6, BlockItem, "FN6HR1", 2, 6, true},
    {15, SecondBitItem, "DO1", 1, 6, true},      {15, SecondBitItem, "DO1", 1000, 6, true},
    {15, SecondBitItem, "DO1", 1976, 6, true},   {16, BlockItem, "HR1", 2, 6, true},
    {16, BlockItem, "HR1", 124, 6, true},        {16, BlockItem, "HR1", 246, 6, true}};

const int RequestCount = static_cast<int>(sizeof Requests / sizeof *Requests);

int dataSizeOf(const Request &request)
{
    return request.isWrite ? 0 : request.replySize - 3;
}

bool hasGoodCrc(const Frame &reply, int size)
{
    return quickCrc(reply.bytes, size - 2) ==
           static_cast<unsigned int>(reply.bytes[size - 2] | reply.bytes[size - 1] << 8);
}

// The texts of all replies, made once: making them would take most of the time.
struct Texts {
    Texts()
    {
        for (int i = 0; i < 256; ++i) {
            stations[i] = QString::fromLatin1("invalid slave id:%1").arg(i);
            exceptions[i] = QString::fromLatin1("exception code:0x") +
                            QString::number(i, 16).toUpper().rightJustified(2, QLatin1Char('0'));
        }
    }

    QString stations[256];
    QString exceptions[256];
    const QString crcError = QLatin1String("CRC error");
    const QString invalid = QLatin1String("invalid response");
};

class EveryReply : public testing::Test
{
protected:
    EveryReply() : part(256), cases(0), data(600, '\0')
    {
        const ProjectDatabase project(QStringList(), 1);
        driver.read(&channel, makeCommand(EightByteItem, QString(), 0));
    }

    ~EveryReply() override
    {
        EXPECT_GT(cases, 0);
        std::cout << cases << " replies" << std::endl;
    }

    // A good reply to the request whose data are 0.
    static Frame goodReply(const Request &request)
    {
        Frame frame = {};
        frame.bytes[0] = 1;
        frame.bytes[1] = static_cast<unsigned char>(request.function);
        if (!request.isWrite)
            frame.bytes[2] = static_cast<unsigned char>(request.replySize - 3);
        closeFrame(frame, request.replySize);
        return frame;
    }

    // The text that a reply has to lead to; null when it is taken.
    const QString *expectedText(const Request &request, const Frame &reply) const
    {
        if (reply.bytes[0] != 1)
            return &texts.stations[reply.bytes[0]];
        if (reply.bytes[1] == request.function)
            return hasGoodCrc(reply, request.replySize + 2) ? nullptr : &texts.crcError;
        if (reply.bytes[1] != (request.function | 0x80))
            return &texts.invalid;
        return hasGoodCrc(reply, 5) ? &texts.exceptions[reply.bytes[2]] : &texts.crcError;
    }

    void startRequest(const Request &request)
    {
        command = makeCommand(request.dataType, QLatin1String(request.address), request.count);
    }

    void check(const Request &request, const Frame &reply)
    {
        ++cases;
        channel.start();
        channel.fixed = reply;
        const QString *const text = expectedText(request, reply);
        const int size = request.isWrite ? 0 : sizeOf(driver.read(&channel, command));
        const bool isWritten = request.isWrite && driver.write(&channel, command, data);
        ASSERT_EQ(driver.hasError(), text != nullptr) << name(request, reply);
        if (text != nullptr) {
            ASSERT_EQ(driver.getLastError(), *text) << name(request, reply);
        }
        ASSERT_EQ(size, text != nullptr ? 0 : dataSizeOf(request)) << name(request, reply);
        ASSERT_EQ(isWritten, request.isWrite && text == nullptr) << name(request, reply);
        // None of these is a reason to give the connection up.
        ASSERT_EQ(channel.closeCount(), 0) << name(request, reply);
        ASSERT_EQ(channel.sentCount(), 1) << name(request, reply);
    }

    const PartOfAll part;
    long long cases;

private:
    static std::string name(const Request &request, const Frame &reply)
    {
        return std::string(request.address) + ", " + std::to_string(request.count) + ": " +
               toHex(QByteArray(reinterpret_cast<const char *>(reply.bytes), reply.size));
    }

    const Texts texts;
    const QByteArray data;
    DriverModbusRtuSlaveOverTcp driver;
    FixedReplyChannel channel;
    CommunicatorCommand command;
};

// What the first three bytes of a frame of this length add to its CRC, which is linear.
struct CrcOfBeginnings {
    explicit CrcOfBeginnings(int length)
    {
        unsigned char bytes[264] = {};
        const unsigned int ofZeros = quickCrc(bytes, length);
        for (int place = 0; place < 3; ++place)
            for (int value = 0; value < 256; ++value) {
                bytes[place] = static_cast<unsigned char>(value);
                parts[place][value] = quickCrc(bytes, length) ^ (place == 0 ? 0 : ofZeros);
                bytes[place] = 0;
            }
    }

    unsigned int parts[3][256];
};

} // namespace

// Every station, function and third byte, with zeros after it and the CRC that makes it a whole reply.
TEST_F(EveryReply, EveryStationFunctionAndByteCount)
{
    for (int i = 0; i < RequestCount; ++i) {
        const Request &request = Requests[i];
        const CrcOfBeginnings crcs(request.replySize);
        startRequest(request);
        Frame reply = goodReply(request);
        for (int station = 0; station < 256; ++station)
            for (int function = 0; function < 256; ++function) {
                // The station of the channel with each function, and each station now and then, is in every
                // part.
                const bool isNear = station == 1 && (function & 0x7F) == request.function;
                if (!isNear && !part.has(static_cast<quint32>(function + 7 * station)))
                    continue;
                for (int third = 0; third < 256; ++third) {
                    reply.bytes[0] = static_cast<unsigned char>(station);
                    reply.bytes[1] = static_cast<unsigned char>(function);
                    reply.bytes[2] = static_cast<unsigned char>(third);
                    const unsigned int crc =
                        crcs.parts[0][station] ^ crcs.parts[1][function] ^ crcs.parts[2][third];
                    reply.bytes[request.replySize] = static_cast<unsigned char>(crc & 0xFFu);
                    reply.bytes[request.replySize + 1] = static_cast<unsigned char>(crc >> 8);
                    ASSERT_NO_FATAL_FAILURE(check(request, reply));
                }
            }
    }
}

// Exception replies have their CRC in the fifth byte already.
TEST_F(EveryReply, EveryExceptionCodeAndItsCrc)
{
    for (int i = 0; i < RequestCount; ++i) {
        const Request &request = Requests[i];
        startRequest(request);
        Frame reply = goodReply(request);
        reply.bytes[1] = static_cast<unsigned char>(request.function | 0x80);
        for (int code = 0; code < 256; ++code) {
            reply.bytes[2] = static_cast<unsigned char>(code);
            closeFrame(reply, 3);
            ASSERT_NO_FATAL_FAILURE(check(request, reply));
            if (!part.has(static_cast<quint32>(code)))
                continue;
            for (int crc = 0; crc < 65536; ++crc) {
                reply.bytes[3] = static_cast<unsigned char>(crc & 0xFF);
                reply.bytes[4] = static_cast<unsigned char>(crc >> 8);
                ASSERT_NO_FATAL_FAILURE(check(request, reply));
            }
        }
    }
}

// Each byte of a good reply with each value.
TEST_F(EveryReply, EveryValueOfEveryByte)
{
    for (int i = 0; i < RequestCount; ++i) {
        const Request &request = Requests[i];
        startRequest(request);
        const Frame good = goodReply(request);
        for (int place = 0; place < good.size; ++place) {
            Frame reply = good;
            for (int value = 0; value < 256; ++value) {
                reply.bytes[place] = static_cast<unsigned char>(value);
                ASSERT_NO_FATAL_FAILURE(check(request, reply));
            }
        }
    }
}
