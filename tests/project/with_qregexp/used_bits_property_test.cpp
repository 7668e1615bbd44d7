#include "drivers/modbus_rtu_slave_over_tcp/project/used_bits.h"
#include "drivers/tools/plc_address.h"
#include "tests/support/random_data.h"

#include <gtest/gtest.h>

#include <QRegExp>

#include <string>

// Address texts of all kinds, plain ones among them, against the rules taken one by one: prefixes, the tools
// and the pattern.

namespace
{

// An address text of parts that belong there, parts that nearly do, and now and then something else.
QString randomTag(RandomData &random)
{
    static const char *const parts[] = {
        "DI",         "DO", "FN5",  "FN5DO", "FN5DI", "di",  "fN5dO", "Hr",
        "IR",         "1-", "300-", "-",     "5",     "007", "65536", "999999999",
        "4294967297", "0",  ".3",   "D",     "F",     " ",   "x",     "\xd9\xa3" /* arabic 3 */,
        "\xc4\xb0" /* I with dot */};
    const int count = static_cast<int>(sizeof parts / sizeof *parts);
    QString tag;
    for (int length = random.between(0, 4); length > 0; --length)
        tag += QString::fromUtf8(parts[random.between(0, count - 1)]);
    return tag;
}

std::string described(const QMap<unsigned char, ModbusBitSet> &bits)
{
    std::string text;
    for (QMap<unsigned char, ModbusBitSet>::const_iterator it = bits.begin(); it != bits.end(); ++it) {
        text += std::to_string(it.key()) + ":";
        for (const ushort address : it.value().DISet())
            text += " DI" + std::to_string(address);
        for (const ushort address : it.value().DOSet())
            text += " DO" + std::to_string(address);
        text += "; ";
    }
    return text;
}

const unsigned char DefaultStation = 17;

QRegExp stationPattern()
{
    return QRegExp(QLatin1String("^(\\d+)-((?:FN5)?DO|DI)(\\d+)"), Qt::CaseInsensitive);
}

std::string bitsOf(const QString &tag)
{
    UsedBits bits(DefaultStation);
    bits.add(tag);
    return described(bits.sortedByStation());
}

std::string bit(unsigned int station, const char *area, unsigned int number)
{
    return std::to_string(station & 0xFF) + ": " + area + std::to_string((number - 1) & 0xFFFF) + "; ";
}

std::string bitByTheRules(const QString &tag)
{
    const auto startsWith = [](const QString &text, const char *prefix) {
        return text.startsWith(QLatin1String(prefix), Qt::CaseInsensitive);
    };
    const auto numberIn = [](const QString &text) {
        return static_cast<unsigned int>(ExtractPLCDeviceAddress(text, 10));
    };
    if (startsWith(tag, "FN5DO"))
        return bit(DefaultStation, "DO", numberIn(tag.mid(3)));
    if (startsWith(tag, "DI"))
        return bit(DefaultStation, "DI", numberIn(tag));
    if (startsWith(tag, "DO"))
        return bit(DefaultStation, "DO", numberIn(tag));
    QRegExp pattern = stationPattern();
    if (pattern.indexIn(tag) != 0)
        return std::string();
    return bit(pattern.cap(1).toUInt(), startsWith(pattern.cap(2), "DI") ? "DI" : "DO",
               pattern.cap(3).toUInt());
}

} // namespace

TEST(UsedBitsProperty, EveryTextIsReadByTheRules)
{
    RandomData random;
    SCOPED_TRACE(random.trace());
    int named = 0;
    for (int i = 0; i < 20000; ++i) {
        const QString tag = randomTag(random);
        const std::string bits = bitsOf(tag);
        ASSERT_EQ(bits, bitByTheRules(tag)) << tag.toUtf8().constData();
        named += bits.empty() ? 0 : 1;
    }
    EXPECT_GT(named, 2000) << "hardly any of the texts was an address";
}

TEST(UsedBitsProperty, NoTextNamesNoBit)
{
    EXPECT_EQ(bitsOf(QString()), "");
}
