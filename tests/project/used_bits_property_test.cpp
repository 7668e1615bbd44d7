#include "drivers/modbus_rtu_slave_over_tcp/used_bits.h"
#include "tests/support/random_data.h"

#include <gtest/gtest.h>

#include <QStringList>

#include <string>

// The quick way through plain address texts against the way of all others: prefixes, the tools and the
// pattern.

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

std::string bitsOf(const QVariant &address)
{
    UsedBits bits(17, QRegExp(QLatin1String("^(\\d+)-((?:FN5)?DO|DI)(\\d+)"), Qt::CaseInsensitive));
    bits.add(address);
    return described(bits.sorted());
}

} // namespace

TEST(UsedBitsProperty, BothWaysAgree)
{
    RandomData random;
    SCOPED_TRACE(random.trace());
    int named = 0;
    for (int i = 0; i < 20000; ++i) {
        const QString tag = randomTag(random);
        const std::string quick = bitsOf(tag);
        // A list of one text reads as that text, but is none.
        ASSERT_EQ(quick, bitsOf(QStringList(tag))) << tag.toUtf8().constData();
        named += quick.empty() ? 0 : 1;
    }
    EXPECT_GT(named, 2000) << "hardly any of the texts was an address";
}

TEST(UsedBitsProperty, ReadsWhatIsNoText)
{
    EXPECT_EQ(bitsOf(QByteArray("DI5")), "17: DI4; ");
    EXPECT_EQ(bitsOf(5), "");
    EXPECT_EQ(bitsOf(QVariant()), "");
}
