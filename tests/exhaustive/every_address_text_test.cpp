// Every address text and every tag of a few characters, over the characters that mean something in them and
// some that do not, against grammars.

#include "drivers/modbus_rtu_slave_over_tcp/address_text.h"
#include "drivers/modbus_rtu_slave_over_tcp/project/used_bits.h"
#include "tests/support/driver_test.h"
#include "tests/support/part_of_all.h"

#include <algorithm>
#include <functional>
#include <regex>

namespace
{

// Calls check(text) for every text of up to `length` of the characters, as far as they are of the part.
void forEveryText(const std::vector<QChar> &characters, int length, const PartOfAll &part,
                  const std::function<void(const QString &)> &check)
{
    const size_t base = characters.size();
    size_t texts = 1;
    for (int size = 0; size <= length; ++size, texts *= base)
        for (size_t number = 0; number < texts; ++number) {
            if (!part.has(static_cast<quint32>(number)))
                continue;
            QString text(size, QLatin1Char(' '));
            size_t rest = number;
            for (int i = 0; i < size; ++i, rest /= base)
                text[i] = characters[rest % base];
            check(text);
            if (testing::Test::HasFatalFailure())
                return;
        }
}

std::vector<QChar> characters(const char *latin1, const std::vector<ushort> &others)
{
    std::vector<QChar> list;
    for (; *latin1 != '\0'; ++latin1)
        list.push_back(QLatin1Char(*latin1));
    for (const ushort other : others)
        list.push_back(QChar(other));
    return list;
}

// The text in eight bits, "?" for what does not fit them, and NUL as a character that no grammar knows.
std::string inLatin1(const QString &text)
{
    std::string latin1;
    for (int i = 0; i < text.size(); ++i) {
        const ushort c = text.at(i).unicode();
        latin1 += c == 0 ? '\x01' : c > 0xFF ? '?' : static_cast<char>(c);
    }
    return latin1;
}

struct Parsed {
    std::string area;
    int offset;
    int bit;
};

bool operator==(const Parsed &a, const Parsed &b)
{
    return a.area == b.area && a.offset == b.offset && a.bit == b.bit;
}

std::ostream &operator<<(std::ostream &out, const Parsed &parsed)
{
    return out << '"' << parsed.area << "\" " << parsed.offset << " " << parsed.bit;
}

const int NoBit = 99;

Parsed byTheDriver(const QString &text)
{
    QByteArray area;
    unsigned short offset = 0;
    unsigned char bit = NoBit;
    ModbusRTUSlaveParseAddress(text, area, offset, bit);
    const Parsed parsed = {std::string(area.constData(), static_cast<size_t>(area.size())), offset, bit};
    return parsed;
}

int numberOf(const std::string &digits)
{
    return digits.empty() ? 0 : std::stoi(digits);
}

// area = [ "F" any any ] letters; text = area [ digits ] [ "." digits ] anything
Parsed byTheGrammar(const QString &text)
{
    static const std::regex grammar("^((?:[Ff][\\s\\S]{0,2})?[A-Za-z]*)([0-9]*)(?:(\\.)([0-9]*))?[\\s\\S]*$");
    std::smatch match;
    const std::string latin1 = inLatin1(text);
    if (!std::regex_match(latin1, match, grammar))
        return {"no match", 0, 0};
    std::string area = match[1];
    std::replace(area.begin(), area.end(), '\x01', '\0');
    return {area, (numberOf(match[2]) + 65535) % 65536, match[3].matched ? numberOf(match[4]) % 256 : NoBit};
}

const unsigned char LinkStation = 17;

std::string usedByTheDriver(const QString &tag)
{
    UsedBits bits(LinkStation);
    bits.add(tag);
    const QMap<unsigned char, ModbusBitSet> map = bits.sortedByStation();
    std::string text;
    for (QMap<unsigned char, ModbusBitSet>::const_iterator it = map.begin(); it != map.end(); ++it) {
        for (const ushort address : it.value().DISet())
            text += std::to_string(it.key()) + "-DI" + std::to_string(address) + " ";
        for (const ushort address : it.value().DOSet())
            text += std::to_string(it.key()) + "-DO" + std::to_string(address) + " ";
    }
    return text;
}

std::string bit(int station, bool isCoil, int number)
{
    return std::to_string(station) + (isCoil ? "-DO" : "-DI") + std::to_string((number + 65535) % 65536) +
           " ";
}

// Of the link: [ "FN5" ] "DO" or "DI", anything without digits, and a number to the end, or else 0. Of a
// station: digits "-" area digits, and anything after that; digits of other scripts count as digits that are
// no number.
std::string usedByTheGrammar(const QString &tag)
{
    static const std::regex ofLink("^(FN5DO|DI|DO)[^0-9]*([0-9]*)([\\s\\S]*)$", std::regex::icase);
    static const std::regex ofStation("^([0-9\x02]+)-(FN5DO|DO|DI)([0-9\x02]+)[\\s\\S]*$", std::regex::icase);
    std::string text;
    for (int i = 0; i < tag.size(); ++i)
        text += tag.at(i).isDigit() && tag.at(i).unicode() > 0x7F ? '\x02' : inLatin1(tag.mid(i, 1))[0];
    std::smatch match;
    if (std::regex_match(text, match, ofLink)) {
        const bool isCoil = std::toupper(match[1].str()[1]) != 'I';
        return bit(LinkStation, isCoil, match[3].length() == 0 ? numberOf(match[2]) : 0);
    }
    if (!std::regex_match(text, match, ofStation))
        return std::string();
    const auto number = [](const std::string &digits) {
        return digits.find('\x02') == std::string::npos ? numberOf(digits) : 0;
    };
    return bit(number(match[1]) % 256, std::toupper(match[2].str()[1]) != 'I', number(match[3]));
}

std::string shown(const QString &text)
{
    std::string hex = "\"" + inLatin1(text) + "\"";
    for (int i = 0; i < text.size(); ++i)
        hex += " " + std::to_string(text.at(i).unicode());
    return hex;
}

} // namespace

TEST(EveryAddressText, UpToFourCharacters)
{
    const PartOfAll part(4);
    const auto meaningful = characters("FfNnHhRrDdIiOoSwZz0156789.-_ @[`{",
                                       {0x00, 0x2F, 0x3A, 0xC4, 0xFF, 0x0130, 0x0663, 0x20AC});
    int texts = 0;
    forEveryText(meaningful, 4, part, [&texts](const QString &text) {
        ++texts;
        ASSERT_EQ(byTheDriver(text), byTheGrammar(text)) << shown(text);
    });
    EXPECT_GT(texts, 10000);
}

// Numbers around where they wrap, after areas that there are.
TEST(EveryAddressText, EveryNumberAndBit)
{
    const PartOfAll part(4);
    for (const char *area : {"HR", "FN5DO"})
        for (int number = 0; number < 140000; ++number) {
            if (!part.has(static_cast<quint32>(number)))
                continue;
            const QString text = QLatin1String(area) + QString::number(number);
            const int bit = number % 600;
            ASSERT_EQ(byTheDriver(text), (Parsed{area, (number + 65535) % 65536, NoBit})) << number;
            ASSERT_EQ(byTheDriver(text + QLatin1Char('.') + QString::number(bit)),
                      (Parsed{area, (number + 65535) % 65536, bit % 256}))
                << number;
        }
}

TEST(EveryAddressText, TagsOfUpToSixCharacters)
{
    const PartOfAll part(4);
    const auto meaningful = characters("FN5DdIO1-", {0x0663});
    int texts = 0;
    forEveryText(meaningful, 6, part, [&texts](const QString &tag) {
        ++texts;
        ASSERT_EQ(usedByTheDriver(tag), usedByTheGrammar(tag)) << shown(tag);
    });
    EXPECT_GT(texts, 10000);
}
