#include "tests/driverhost/interop/libmodbus_slave.h"
#include "tests/driverhost/support/host_program.h"
#include "tests/peers/serial_bridge.h"

#include <gtest/gtest.h>

// Known bytes of every type in every order, in the registers of a slave of libmodbus.

namespace
{

struct Known {
    const char *type;
    const char *value; // as it is shown, and taken
    const char *bytes; // the most significant first
};

const Known Values[] = {
    {"u16", "4660", "1234"},
    {"i16", "-2", "FFFE"},
    {"hex", "0xBEEF", "BEEF"},
    {"bin", "0b1000000000000001", "8001"},
    {"bcd16", "1234", "1234"},
    {"str2", "Pu", "5075"},
    {"u32", "305419896", "12345678"},
    {"i32", "-305419896", "EDCBA988"},
    {"f32", "123456", "47F12000"},
    {"hex32", "0x12345678", "12345678"},
    {"bin32", "0b10000000000000000000000000000001", "80000001"},
    {"bcd32", "12345678", "12345678"},
    {"u64", "81985529216486895", "0123456789ABCDEF"},
    {"i64", "-81985529216486895", "FEDCBA9876543211"},
    {"f64", "21.5", "4035800000000000"},
    {"hex64", "0x0123456789ABCDEF", "0123456789ABCDEF"},
    {"bcd64", "1234567890123456", "1234567890123456"},
};

// An item, its value, and the registers in which it lies.
struct Laid {
    QString item;
    QString value;
    std::vector<int> registers;
};

// The letters are where the bytes go.
std::vector<int> registersOf(const QByteArray &bytes, const QByteArray &letters)
{
    const auto byteAt = [&](int place) { return quint8(bytes.at(letters.at(place) - 'A')); };
    std::vector<int> registers;
    for (int i = 0; i < bytes.size(); i += 2)
        registers.push_back(byteAt(i) * 256 + byteAt(i + 1));
    return registers;
}

// Every type in every order, one value after the other from HR1 on.
std::vector<Laid> everything()
{
    const QList<QList<QByteArray>> orders{
        {"AB", "BA"}, {"ABCD", "CDAB", "BADC", "DCBA"}, {"ABCDEFGH", "GHEFCDAB", "BADCFEHG", "HGFEDCBA"}};
    std::vector<Laid> all;
    size_t next = 1;
    for (const Known &known : Values) {
        const QByteArray bytes = QByteArray::fromHex(known.bytes);
        for (const QByteArray &order : orders.at(bytes.size() / 4)) {
            const QString item =
                QStringLiteral("HR%1:%2@%3").arg(next).arg(known.type, QString::fromLatin1(order));
            all.push_back({item, known.value, registersOf(bytes, order)});
            next += all.back().registers.size();
        }
    }
    return all;
}

class LibmodbusTypes : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(slave.isConnected) << modbus_strerror(errno); }
    QString target() const { return QStringLiteral("rtutcp://127.0.0.1:%1/1").arg(line.port()); }

    SerialBridge line;
    LibmodbusSlave slave{line.device()};
};

} // namespace

// No master reads while they are laid there.
TEST_F(LibmodbusTypes, AreReadAsTheyLie)
{
    QStringList words{"read", target(), "--format", "csv"};
    int number = 1;
    for (const Laid &laid : everything()) {
        words += laid.item;
        for (const int value : laid.registers)
            slave.setHoldingRegister(number++, value);
    }
    const HostRun run = runHost(words);
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    const QStringList rows = run.out.split('\n', Qt::SkipEmptyParts).mid(1);
    ASSERT_EQ(static_cast<size_t>(rows.size()), everything().size());
    int row = 0;
    for (const Laid &laid : everything())
        EXPECT_EQ(rows.at(row++).section(',', 4, 4), laid.value) << laid.item.toStdString();
}

TEST_F(LibmodbusTypes, AreWrittenAsTheyAreToLie)
{
    QStringList words{"write", target(), "--verify"};
    for (const Laid &laid : everything())
        words += laid.item + '=' + laid.value;
    const HostRun run = runHost(words);
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    int number = 1;
    for (const Laid &laid : everything()) {
        for (const int value : laid.registers)
            EXPECT_EQ(slave.holdingRegister(number++), value) << laid.item.toStdString();
    }
    EXPECT_EQ(everything().size(), 6u * 2 + 6 * 4 + 5 * 4);
}
