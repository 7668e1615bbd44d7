#include "desk/types/byte_order.h"
#include "desk/types/value_parse.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <random>

// How values lie in registers: the bytes of a value go out in the order of the letters.

namespace
{

const char *const Types[] = {"u8",    "i8",    "u16",   "i16",   "hex",  "bin",  "bcd16", "u32",   "i32",
                             "f32",   "hex32", "bin32", "bcd32", "u64",  "i64",  "f64",   "hex64", "bin64",
                             "bcd64", "hex8",  "bin8",  "str1",  "str2", "str7", "str16", "str250"};
const char *const Orders[] = {"ABCD", "CDAB", "BADC", "DCBA"};
const char *const LongOrders[] = {"ABCDEFGH", "GHEFCDAB", "BADCFEHG", "HGFEDCBA"};

ValueType typeOf(const char *name)
{
    return parseType(QLatin1String(name)).valueOr(ValueType());
}

ByteOrder orderOf(const char *name, const ValueType &type)
{
    const Result<ByteOrder> order = parseOrder(QLatin1String(name), type);
    EXPECT_TRUE(order) << order.errorText().toStdString();
    return order.valueOr(ByteOrder());
}

// The bytes on the wire, the high byte of each register first.
QByteArray wireOf(const std::vector<quint16> &registers)
{
    QByteArray bytes;
    for (const quint16 word : registers)
        bytes.append(static_cast<char>(word >> 8)).append(static_cast<char>(word & 0xFF));
    return bytes;
}

QByteArray wireOf(const char *text, const char *type, const char *order)
{
    const Result<QByteArray> value = parseValue(QLatin1String(text), typeOf(type));
    EXPECT_TRUE(value) << value.errorText().toStdString();
    return wireOf(registersOf({value.valueOr({})}, typeOf(type), orderOf(order, typeOf(type))))
        .toHex()
        .toUpper();
}

QByteArray inLetters(const QByteArray &value, const QByteArray &letters)
{
    QByteArray bytes;
    for (const char letter : letters)
        bytes += value.at(letter - 'A');
    return bytes;
}

class Random
{
public:
    explicit Random(unsigned int seed) : m_engine(seed) {}
    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(m_engine); }

    // Any bits that are a value of the type.
    QByteArray value(const ValueType &type)
    {
        QByteArray value(type.bytes(), '\0');
        for (char &byte : value)
            byte = static_cast<char>(type.meaning == Meaning::Bcd ? below(10) * 16 + below(10) : below(256));
        return value;
    }

private:
    std::mt19937 m_engine;
};

} // namespace

TEST(ValueLayout, GoldenValuesOfEveryTypeInEveryOrder)
{
    const struct {
        const char *text;
        const char *type;
        const char *wire[4]; // in the sequence of Orders
    } cases[] = {
        {"4660", "u16", {"1234", "1234", "3412", "3412"}},
        {"-2", "i16", {"FFFE", "FFFE", "FEFF", "FEFF"}},
        {"0xBEEF", "hex", {"BEEF", "BEEF", "EFBE", "EFBE"}},
        {"0b1000000000000001", "bin", {"8001", "8001", "0180", "0180"}},
        {"1234", "bcd16", {"1234", "1234", "3412", "3412"}},
        {"305419896", "u32", {"12345678", "56781234", "34127856", "78563412"}},
        {"-2", "i32", {"FFFFFFFE", "FFFEFFFF", "FFFFFEFF", "FEFFFFFF"}},
        {"123456.0", "f32", {"47F12000", "200047F1", "F1470020", "0020F147"}},
        {"1", "f32", {"3F800000", "00003F80", "803F0000", "0000803F"}},
        {"12345678", "bcd32", {"12345678", "56781234", "34127856", "78563412"}},
        {"0x0123456789ABCDEF",
         "u64",
         {"0123456789ABCDEF", "CDEF89AB45670123", "23016745AB89EFCD", "EFCDAB8967452301"}},
        {"-2", "i64", {"FFFFFFFFFFFFFFFE", "FFFEFFFFFFFFFFFF", "FFFFFFFFFFFFFEFF", "FEFFFFFFFFFFFFFF"}},
        {"1.5", "f64", {"3FF8000000000000", "0000000000003FF8", "F83F000000000000", "000000000000F83F"}},
        {"123456789012345",
         "bcd64",
         {"0123456789012345", "2345890145670123", "2301674501894523", "4523018967452301"}},
        {"ABC", "str4", {"41424300", "41424300", "42410043", "42410043"}},
        {"ABC", "str3", {"41424300", "41424300", "42410043", "42410043"}},
        {"17", "u8", {"1100", "1100", "0011", "0011"}},
        {"-1", "i8", {"FF00", "FF00", "00FF", "00FF"}},
    };
    for (const auto &one : cases) {
        for (size_t i = 0; i < std::size(Orders); ++i)
            EXPECT_EQ(wireOf(one.text, one.type, Orders[i]), one.wire[i])
                << one.text << one.type << Orders[i];
    }
    EXPECT_EQ(wireOf("0x0123456789ABCDEF", "u64", "GHEFCDAB"), "CDEF89AB45670123");
    EXPECT_EQ(wireOf("0x0123456789ABCDEF", "u64", "BADCFEHG"), "23016745AB89EFCD");
}

// The letters themselves are the oracle.
TEST(ValueLayout, BytesLieAsTheLettersSay)
{
    Random random(1);
    for (const char *type : {"u32", "i32", "f32", "hex32", "bin32", "bcd32"}) {
        for (const char *order : Orders) {
            const QByteArray value = random.value(typeOf(type));
            EXPECT_EQ(wireOf(registersOf({value}, typeOf(type), orderOf(order, typeOf(type)))),
                      inLetters(value, order))
                << type << order;
        }
    }
    for (const char *type : {"u64", "i64", "f64", "hex64", "bcd64"}) {
        for (size_t i = 0; i < std::size(Orders); ++i) {
            const QByteArray value = random.value(typeOf(type));
            for (const char *order : {Orders[i], LongOrders[i]})
                EXPECT_EQ(wireOf(registersOf({value}, typeOf(type), orderOf(order, typeOf(type)))),
                          inLetters(value, LongOrders[i]))
                    << type << order;
        }
    }
}

TEST(ValueLayout, EveryValueOfEveryTypeInEveryOrderComesBack)
{
    Random random(2);
    for (const char *name : Types) {
        const ValueType type = typeOf(name);
        for (const char *order : Orders) {
            for (int run = 0; run < 100; ++run) {
                std::vector<QByteArray> values;
                for (int i = random.below(5); i >= 0; --i)
                    values.push_back(random.value(type));
                const std::vector<quint16> registers = registersOf(values, type, orderOf(order, type));
                const int count = static_cast<int>(values.size());
                ASSERT_EQ(static_cast<int>(registers.size()),
                          type.isByte() ? (count + 1) / 2 : count * type.registers());
                EXPECT_EQ(valuesIn(registers, type, orderOf(order, type), count), values) << name << order;
                EXPECT_EQ(registersIn(driverDataOf(registers)), registers);
            }
        }
    }
}

// What is shown can be typed in again, and is the same value.
TEST(ValueLayout, TextsOfValuesAreThoseValues)
{
    Random random(3);
    for (const char *name : Types) {
        const ValueType type = typeOf(name);
        for (int run = 0; run < 300; ++run) {
            QByteArray value = random.value(type);
            if (type.isText()) {
                for (char &byte : value)
                    byte = static_cast<char>('!' + random.below(90));
            }
            const QString text = textOf(value, type);
            if (text.contains(QLatin1String("nan")))
                continue;
            const Result<QByteArray> again = parseValue(text, type);
            ASSERT_TRUE(again) << name << again.errorText().toStdString();
            EXPECT_EQ(*again, value) << name << text.toStdString();
        }
    }
}

TEST(ValueLayout, TheDefaultIsTheDriversOrder)
{
    EXPECT_EQ(nameOf(defaultOrder(typeOf("u32")), typeOf("u32")), QStringLiteral("CDAB"));
    EXPECT_EQ(nameOf(defaultOrder(typeOf("f64")), typeOf("f64")), QStringLiteral("GHEFCDAB"));
    EXPECT_EQ(nameOf(defaultOrder(typeOf("u16")), typeOf("u16")), QStringLiteral("AB"));
    EXPECT_EQ(nameOf(defaultOrder(typeOf("u8")), typeOf("u8")), QStringLiteral("BA"));
    EXPECT_EQ(nameOf(defaultOrder(typeOf("str5")), typeOf("str5")), QStringLiteral("AB"));
}

TEST(ValueLayout, GivesNoValueThatIsNotWhole)
{
    EXPECT_TRUE(valuesIn({1}, typeOf("u32"), {}, 1).empty());
    EXPECT_EQ(valuesIn({1, 2, 3}, typeOf("u32"), {}, 5).size(), 1u);
    EXPECT_EQ(valuesIn({1, 2, 3}, typeOf("u8"), {}, 5).size(), 5u);
    EXPECT_TRUE(valuesIn({}, typeOf("str7"), {}, 1).empty());
}
