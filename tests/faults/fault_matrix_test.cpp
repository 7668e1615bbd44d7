#include "tests/support/transactions.h"

#include "drivers/qt/qt_lines.h"

// Every reader and writer with every fault in every reply and in every call of the channel: the exact text,
// closed or not, how many attempts, and never a byte of a refused reply in a result.

namespace
{

struct Fault {
    std::string name;
    ScriptedChannel::Pieces reply;
    // Empty when the reply is as good as any.
    std::string text;
    bool isClosing;
};

typedef std::vector<Fault> Faults;

void add(Faults &faults, const std::string &name, const QByteArray &reply, const std::string &text,
         bool isClosing)
{
    const Fault fault = {name, ScriptedChannel::Pieces(1, reply), text, isClosing};
    faults.push_back(fault);
}

QByteArray withByte(QByteArray bytes, int i, int value)
{
    bytes[i] = static_cast<char>(value);
    return bytes;
}

std::string slaveIdText(int station)
{
    return "invalid slave id:" + std::to_string(station);
}

// What a reply gives that ends after so many bytes, or comes in two pieces of which the first has so many.
std::string textOfLength(int size)
{
    return size == 0 ? "PLC no response" : size < 5 ? "received bytes < 5" : "packet loss";
}

void addCuts(Faults &faults, const QByteArray &reply)
{
    for (int size = 0; size < reply.size(); ++size)
        add(faults, "cut to " + std::to_string(size), reply.left(size), textOfLength(size), true);
}

// The first read takes five bytes, so a gap right after them does not matter.
void addSplits(Faults &faults, const QByteArray &reply)
{
    for (int size = 1; size < reply.size(); ++size) {
        const ScriptedChannel::Pieces pieces = {reply.left(size), reply.mid(size)};
        const Fault fault = {"split at " + std::to_string(size), pieces, size == 5 ? "" : textOfLength(size),
                             size != 5};
        faults.push_back(fault);
    }
}

std::string textOfFlip(const QByteArray &flipped, int bit)
{
    if (bit < 8)
        return slaveIdText(byteAt(flipped, 0));
    return bit < 15 ? "invalid response" : "CRC error";
}

void addFlips(Faults &faults, const QByteArray &reply)
{
    for (int bit = 0; bit < reply.size() * 8; ++bit) {
        const QByteArray flipped = withByte(reply, bit / 8, byteAt(reply, bit / 8) ^ (1 << bit % 8));
        add(faults, "bit " + std::to_string(bit), flipped, textOfFlip(flipped, bit), false);
    }
}

void addExceptions(Faults &faults, const QByteArray &reply)
{
    static const char *const digits[] = {"00", "01", "02", "03", "04", "05",
                                         "06", "07", "08", "09", "0A", "0B"};
    for (int code = 1; code <= 11; ++code) {
        const QByteArray exception = exceptionReply(1, byteAt(reply, 1), code);
        add(faults, "exception " + std::to_string(code), exception,
            std::string("exception code:0x") + digits[code], false);
        for (int i = 3; i < 5; ++i)
            add(faults, "exception with wrong CRC", withByte(exception, i, byteAt(exception, i) ^ 0x10),
                "CRC error", false);
        add(faults, "exception of another function", exceptionReply(1, byteAt(reply, 1) + 1, code),
            "invalid response", false);
        add(faults, "exception of another station", exceptionReply(2, byteAt(reply, 1), code), slaveIdText(2),
            false);
    }
}

// Replies that are whole, with a CRC that is right.
void addForeign(Faults &faults, const QByteArray &reply)
{
    const QByteArray body = reply.left(reply.size() - 2);
    for (const int station : {0, 2, 129, 255})
        add(faults, "station", framed(withByte(body, 0, station)), slaveIdText(station), false);
    for (int function = 0; function < 256; ++function)
        if ((function & 0x7F) != byteAt(reply, 1))
            add(faults, "function", framed(withByte(body, 1, function)), "invalid response", false);
    // Byte counts of reads and the fields of an echo are not compared.
    const int lastEchoByte = byteAt(reply, 1) < 5 ? 2 : 5;
    for (int i = 2; i <= lastEchoByte; ++i)
        add(faults, "field", framed(withByte(body, i, byteAt(body, i) ^ 0xFF)), "", false);
}

Faults faultsOf(const QByteArray &reply)
{
    Faults faults;
    addCuts(faults, reply);
    addSplits(faults, reply);
    addFlips(faults, reply);
    addExceptions(faults, reply);
    addForeign(faults, reply);
    return faults;
}

class FaultMatrix : public testing::Test
{
protected:
    FaultMatrix() : transactions(makeTransactions()), link(transactionTags()) {}

    void addGoodReplies(const Transaction &transaction, size_t number)
    {
        for (size_t i = 0; i < number; ++i)
            link.channel.addReply(transaction.exchanges[i].reply);
    }

    void start(int retries)
    {
        link.channel.forgetScript();
        link.channel.forgetCalls();
        link.channel.connected = true;
        link.channel.retries = retries;
    }

    // Runs the command; empty text: it must succeed.
    void expectOutcome(const Transaction &transaction, const std::string &text)
    {
        const std::string expected = text.empty() ? NoError : text + transaction.details;
        if (transaction.isWrite) {
            EXPECT_EQ(link.write(transaction.dataType, transaction.address, transaction.count,
                                 fromHex(transaction.data)),
                      text.empty());
        } else {
            EXPECT_EQ(link.read(transaction.dataType, transaction.address, transaction.count),
                      text.empty() ? transaction.result : QByteArray());
        }
        EXPECT_EQ(link.error(), expected);
    }

    // So many attempts that end with exchange number \a last, each a pause, a question and perhaps an open.
    void expectAttempts(const Transaction &transaction, int attempts, size_t last, bool isClosing)
    {
        QList<QByteArray> requests;
        for (int i = 0; i < attempts; ++i)
            for (size_t k = 0; k <= last; ++k)
                requests << transaction.exchanges[k].request;
        EXPECT_EQ(link.channel.requests(), requests);
        EXPECT_EQ(link.channel.count(ScriptedChannel::IsConnected), attempts);
        EXPECT_EQ(link.channel.count(ScriptedChannel::Close), isClosing ? attempts : 0);
        EXPECT_EQ(link.channel.count(ScriptedChannel::Open), isClosing ? attempts - 1 : 0);
        EXPECT_EQ(link.channel.connected, !isClosing);
    }

    // The same fault in every attempt.
    void lastingFault(const Transaction &transaction, size_t at, const Fault &fault, int retries)
    {
        start(retries);
        for (int i = 0; i <= retries; ++i) {
            addGoodReplies(transaction, at);
            link.channel.addReply(fault.reply);
        }
        expectOutcome(transaction, fault.text);
        expectAttempts(transaction, retries + 1, at, fault.isClosing);
    }

    // A fault in the first attempts; the last one goes well.
    void passingFault(const Transaction &transaction, size_t at, const Fault &fault, int retries)
    {
        start(retries);
        for (int i = 0; i < retries; ++i) {
            addGoodReplies(transaction, at);
            link.channel.addReply(fault.reply);
        }
        addGoodReplies(transaction, transaction.exchanges.size());
        expectOutcome(transaction, "");
        EXPECT_EQ(link.channel.count(ScriptedChannel::Close), fault.isClosing ? retries : 0);
        EXPECT_EQ(static_cast<size_t>(link.channel.requests().size()),
                  static_cast<size_t>(retries) * (at + 1) + transaction.exchanges.size());
    }

    // A fault that does not matter: all goes on after it.
    void harmlessFault(const Transaction &transaction, size_t at, const Fault &fault)
    {
        start(0);
        addGoodReplies(transaction, at);
        link.channel.addReply(fault.reply);
        for (size_t i = at + 1; i < transaction.exchanges.size(); ++i)
            link.channel.addReply(transaction.exchanges[i].reply);
        expectOutcome(transaction, "");
        EXPECT_EQ(link.channel.count(ScriptedChannel::Close), 0);
    }

    // Good replies for an attempt that ends after \a answered exchanges, and for a whole one.
    void startWithGoodReplies(const Transaction &transaction, size_t answered, int retries)
    {
        start(retries);
        addGoodReplies(transaction, answered);
        addGoodReplies(transaction, transaction.exchanges.size());
    }

    // The nth read of the channel, in exchange number \a at, gives \a result once.
    void failingRead(const Transaction &transaction, size_t at, int nth, int result, const std::string &text)
    {
        SCOPED_TRACE("read " + std::to_string(nth) + " gives " + std::to_string(result));
        for (int retries = 0; retries <= 3; ++retries) {
            startWithGoodReplies(transaction, at + 1, retries);
            link.channel.fail(ScriptedChannel::ReadData, nth, result);
            expectOutcome(transaction, retries == 0 ? text : "");
            EXPECT_EQ(link.channel.count(ScriptedChannel::Close), 1);
            EXPECT_EQ(link.channel.count(ScriptedChannel::IsConnected), retries == 0 ? 1 : 2);
        }
    }

    const std::vector<Transaction> transactions;
    LoadedDriver link;
};

} // namespace

TEST_F(FaultMatrix, EveryFaultOfEveryReply)
{
    for (const Transaction &transaction : transactions)
        for (size_t at = 0; at < transaction.exchanges.size(); ++at)
            for (const Fault &fault : faultsOf(transaction.exchanges[at].reply)) {
                SCOPED_TRACE(transaction.name + (", reply " + std::to_string(at)) + ": " + fault.name);
                if (fault.text.empty()) {
                    harmlessFault(transaction, at, fault);
                    continue;
                }
                for (int retries = 0; retries <= 3; ++retries) {
                    lastingFault(transaction, at, fault, retries);
                    passingFault(transaction, at, fault, retries);
                }
                ASSERT_FALSE(HasFailure());
            }
}

TEST_F(FaultMatrix, EverySendFallsShort)
{
    for (const Transaction &transaction : transactions)
        for (size_t at = 0; at < transaction.exchanges.size(); ++at) {
            const int whole = sizeOf(transaction.exchanges[at].request);
            for (int sent = -1; sent < whole; ++sent) {
                SCOPED_TRACE(transaction.name + (", request " + std::to_string(at)) + ", sent " +
                             std::to_string(sent));
                for (int retries = 0; retries <= 3; ++retries) {
                    startWithGoodReplies(transaction, at, retries);
                    link.channel.fail(ScriptedChannel::WriteData, static_cast<int>(at) + 1, sent);
                    expectOutcome(transaction, retries == 0 ? "channel error" : "");
                    EXPECT_EQ(link.channel.count(ScriptedChannel::Close), 1);
                    EXPECT_EQ(link.channel.count(ScriptedChannel::ErrorString), 1);
                    EXPECT_EQ(link.channel.count(ScriptedChannel::Open), retries == 0 ? 0 : 1);
                }
            }
        }
}

TEST_F(FaultMatrix, EveryReadFails)
{
    for (const Transaction &transaction : transactions)
        for (size_t at = 0; at < transaction.exchanges.size(); ++at) {
            SCOPED_TRACE(transaction.name + (", reply " + std::to_string(at)));
            const int firstRead = 2 * static_cast<int>(at) + 1;
            for (const int result : {-1, 0, 1, 4, 6, 257})
                failingRead(transaction, at, firstRead, result,
                            result > 0 ? "received bytes < 5" : "PLC no response");
            for (int result = -1; result < transaction.exchanges[at].reply.size() - 5; ++result)
                failingRead(transaction, at, firstRead + 1, result, "packet loss");
        }
}

TEST_F(FaultMatrix, OpenFailsOnAnyAttempt)
{
    for (const Transaction &transaction : transactions)
        for (int nth = 1; nth <= 4; ++nth) {
            SCOPED_TRACE(transaction.name + (", open " + std::to_string(nth)));
            start(3);
            link.channel.connected = false;
            link.channel.errorTextAfterClose = QLatin1String("closed");
            link.channel.errorText = QLatin1String("no route");
            link.channel.fail(ScriptedChannel::Open, nth);
            // No reply at all, so every attempt closes; details are not for a channel that does not open.
            if (transaction.isWrite) {
                EXPECT_FALSE(link.write(transaction.dataType, transaction.address, transaction.count,
                                        fromHex(transaction.data)));
            } else {
                EXPECT_EQ(link.read(transaction.dataType, transaction.address, transaction.count),
                          QByteArray());
            }
            EXPECT_EQ(link.error(), nth == 1 ? "no route" : "closed");
            EXPECT_EQ(link.channel.count(ScriptedChannel::Open), nth);
            EXPECT_EQ(link.channel.count(ScriptedChannel::Close), nth - 1);
            EXPECT_EQ(link.channel.requests().size(), nth - 1);
        }
}

// A channel that says it is closed is opened, and the rest is as without that.
TEST_F(FaultMatrix, ChannelThatSaysItIsClosed)
{
    for (const Transaction &transaction : transactions) {
        startWithGoodReplies(transaction, transaction.exchanges.size(), 0);
        link.channel.fail(ScriptedChannel::IsConnected, 1, 0);
        expectOutcome(transaction, "");
        EXPECT_EQ(link.channel.count(ScriptedChannel::Open), 1);
        expectOutcome(transaction, "");
        EXPECT_EQ(link.channel.count(ScriptedChannel::Open), 1);
    }
}
