#include "tests/support/driver_test.h"
#include "tests/support/used_bits.h"

// Which bit addresses of which station a driver takes from the tags of its project.

namespace
{

struct TagCase {
    const char *tag;
    int station;
    const char *used;
};

class TagClass : public testing::TestWithParam<TagCase>
{
};

void PrintTo(const TagCase &c, std::ostream *out)
{
    *out << '"' << c.tag << '"';
}

} // namespace

// Beside each tag the project has one of the default station, so that station 1 always has an entry.
TEST_P(TagClass, IsOneBitOfOneArea)
{
    const TagCase &c = GetParam();
    LoadedDriver link(QStringList() << QLatin1String("DI100") << QString::fromUtf8(c.tag));
    EXPECT_EQ(usedBits(link.driver, link.channel, c.station), c.used);
    if (c.station != 1) {
        EXPECT_EQ(usedBits(link.driver, link.channel, 1), "DI 99");
    }
}

const TagCase ofTheDefaultStation[] = {
    {"DI1", 1, "DI 0 99"},
    {"di3", 1, "DI 2 99"},
    {"DO10", 1, "DI 99, DO 9"},
    {"dO10", 1, "DI 99, DO 9"},
    {"FN5DO7", 1, "DI 99, DO 6"},
    {"fn5do8", 1, "DI 99, DO 7"},
    {"FN5DO123", 1, "DI 99, DO 122"},
    {"DI007", 1, "DI 6 99"},
    {"DIX7", 1, "DI 6 99"},
    {"DI 7", 1, "DI 6 99"},
    {"DI-7", 1, "DI 6 99"},
    {"DOG7", 1, "DI 99, DO 6"},
    {"FN5DOX9", 1, "DI 99, DO 8"},
    {"DI100", 1, "DI 99"},
    {"DI65536", 1, "DI 99 65535"},
    {"DI65537", 1, "DI 0 99"},
    {"DI131073", 1, "DI 0 99"},
    {"DO2147483647", 1, "DI 99, DO 65534"},
};
INSTANTIATE_TEST_SUITE_P(OfTheDefaultStation, TagClass, testing::ValuesIn(ofTheDefaultStation));

// A prefix that is known counts even when no number can be read after it.
const TagCase withoutNumber[] = {
    {"DI", 1, "DI 99 65535"},    {"do", 1, "DI 99, DO 65535"},    {"FN5DO", 1, "DI 99, DO 65535"},
    {"DI0", 1, "DI 99 65535"},   {"DO5.3", 1, "DI 99, DO 65535"}, {"FN5DO5.3", 1, "DI 99, DO 65535"},
    {"DI5:", 1, "DI 99 65535"},  {"DI5x", 1, "DI 99 65535"},      {"DI99999999999", 1, "DI 99 65535"},
    {"DIabc", 1, "DI 99 65535"},
};
INSTANTIATE_TEST_SUITE_P(WithoutNumber, TagClass, testing::ValuesIn(withoutNumber));

const TagCase ofAStation[] = {
    {"2-DO5", 2, "DO 4"},
    {"2-fn5do5", 2, "DO 4"},
    {"2-FN5DO567", 2, "DO 566"},
    {"12-DI100", 12, "DI 99"},
    {"12-di100", 12, "DI 99"},
    {"300-DI1", 44, "DI 0"},
    {"1234567890-DI1", 210, "DI 0"},
    {"999999999-fn5do999999999", 255, "DO 51710"},
    {"0-DO1", 0, "DO 0"},
    {"256-DO1", 0, "DO 0"},
    {"255-DO1", 255, "DO 0"},
    {"007-DI8", 7, "DI 7"},
    {"1-DO5.3", 1, "DI 99, DO 4"},
    {"2-DI7xyz", 2, "DI 6"},
    {"1-DI5", 1, "DI 4 99"},
    {"2-DO0", 2, "DO 65535"},
    {"2-DI65537", 2, "DI 0"},
    {"2-DO4294967295", 2, "DO 65534"},
};
INSTANTIATE_TEST_SUITE_P(OfAStation, TagClass, testing::ValuesIn(ofAStation));

const TagCase ofNoBitArea[] = {
    {"", 1, "DI 99"},
    {"HR1", 1, "DI 99"},
    {"1-HR4", 1, "DI 99"},
    {"IR5", 1, "DI 99"},
    {"FN6HR1.3", 1, "DI 99"},
    {"HR1.5", 1, "DI 99"},
    {"D", 1, "DI 99"},
    {"D1", 1, "DI 99"},
    {"FN5D1", 1, "DI 99"},
    {"FN5DI1", 1, "DI 99"},
    {"FN6DO1", 1, "DI 99"},
    {"F", 1, "DI 99"},
    {"1-FN5DI1", 1, "DI 99"},
    {"1-FN6DO1", 1, "DI 99"},
    {"1-DI", 1, "DI 99"},
    {"1-DOx1", 1, "DI 99"},
    {"1--DI2", 1, "DI 99"},
    {"1- DI2", 1, "DI 99"},
    {"1.DI2", 1, "DI 99"},
    {"-DI2", 1, "DI 99"},
    {" DI2", 1, "DI 99"},
    {" 1-DI2", 1, "DI 99"},
    {"x1-DI2", 1, "DI 99"},
    {"1-", 1, "DI 99"},
    {"1", 1, "DI 99"},
    {"1-1-DI2", 1, "DI 99"},
    {"1-D\xC3\x8F"
     "2",
     1, "DI 99"},
    {"HR1-DI2", 1, "DI 99"},
    {"BI7", 1, "DI 99"},
    {"BO7", 1, "DI 99"},
    {"1-BO7", 1, "DI 99"},
    {"DX7", 1, "DI 99"},
    {"FX5DO7", 1, "DI 99"},
    {"XN5DO7", 1, "DI 99"},
    {"FN5XO7", 1, "DI 99"},
    {"FN5DX7", 1, "DI 99"},
    {"1-FN5DX7", 1, "DI 99"},
    {"2-HR4", 2, "invalid address 2-DI"},
    {"-DI", 0, "invalid address 0-DI"},
};
INSTANTIATE_TEST_SUITE_P(OfNoBitArea, TagClass, testing::ValuesIn(ofNoBitArea));

// Digits of other scripts are digits for the pattern and no number: station 0, or address 65535.
const TagCase inOtherScripts[] = {
    {"2-DI\xD9\xA3", 2, "DI 65535"},
    {"2-DI\xD9\xA3"
     "4",
     2, "DI 65535"},
    {"2-DI4\xD9\xA3", 2, "DI 65535"},
    {"2-DO\xE0\xA5\xA7", 2, "DO 65535"},
    {"\xD9\xA2-DI5", 0, "DI 4"},
    {"2\xD9\xA2-DI5", 0, "DI 4"},
    {"\xEF\xBC\x92-fn5do\xEF\xBC\x93", 0, "DO 65535"},
    {"DI\xD9\xA3", 1, "DI 99 65535"},
    {"FN5DO\xD9\xA3", 1, "DI 99, DO 65535"},
    {"DI5\xD9\xA3", 1, "DI 99 65535"},
};
INSTANTIATE_TEST_SUITE_P(InOtherScripts, TagClass, testing::ValuesIn(inOtherScripts));

TEST(BitAddressMap, MixedProject)
{
    LoadedDriver link(
        stringList({"DO10", "di3", "2-DO5", "HR1", "DI1", "DO10", "FN5DO2", "2-DI9", "DI3", "2-fn5do1"}));
    EXPECT_EQ(usedBits(link.driver, link.channel, 1), "DI 0 2, DO 1 9");
    EXPECT_EQ(usedBits(link.driver, link.channel, 2), "DI 8, DO 0 4");
    EXPECT_EQ(usedBits(link.driver, link.channel, 3), "invalid address 3-DI");
}

TEST(BitAddressMap, ProjectWithoutTags)
{
    LoadedDriver link;
    EXPECT_EQ(usedBits(link.driver, link.channel, 1), "invalid address 1-DI");
}

namespace
{

// A driver that reads the database only with its first command.
class TagTable : public testing::Test
{
protected:
    SleepRecorder pauses;
    ScriptedChannel channel;
    DriverModbusRtuSlaveOverTcp driver;
};

} // namespace

TEST_F(TagTable, OnlyTagsOfTheLinkCount)
{
    ProjectDatabase project;
    project.addLink(5, 2000);
    project.addNode(5, 1, true);
    project.addTags(stringList({"DI1"}), 5);
    project.addTags(stringList({"DI3", "1-DO3"}), 4);
    EXPECT_EQ(usedBits(driver, channel, 1), "DI 0");
}

TEST_F(TagTable, DefaultStationIsTheNodesLowByte)
{
    ProjectDatabase project;
    project.addLink(5, 2000);
    project.addNode(5, 300, true);
    project.addTags(stringList({"DO2"}), 5);
    EXPECT_EQ(usedBits(driver, channel, 44), "DO 1");
}

TEST_F(TagTable, ValuesThatAreNoText)
{
    ProjectDatabase project(stringList({"DO2"}), 1);
    ProjectDatabase::execute(QStringList()
                             << QLatin1String("INSERT INTO custom_tag_table VALUES (NULL, 1)")
                             << QLatin1String("INSERT INTO custom_tag_table VALUES (17, 1)")
                             << QLatin1String("INSERT INTO custom_tag_table VALUES (1.5, 1)")
                             << QLatin1String("INSERT INTO custom_tag_table VALUES (x'444F34', 1)")
                             << QLatin1String("INSERT INTO custom_tag_table VALUES ('DO6', NULL)")
                             << QLatin1String("INSERT INTO custom_tag_table VALUES ('DO8', '1')"));
    // Bytes are read as the text that they spell.
    EXPECT_EQ(usedBits(driver, channel, 1), "DO 1 3");
}

// A NUL ends the number, and nothing after it is looked at. Elsewhere it is a character like others.
TEST_F(TagTable, NulInATag)
{
    const ProjectDatabase project(QStringList(), 1);
    for (const char *hex : {"4449350037", "322D444F3500", "00444933", "44004933", "44490039"})
        ProjectDatabase::execute(
            QString::fromLatin1("INSERT INTO custom_tag_table VALUES (CAST(x'%1' AS TEXT), 1)")
                .arg(QLatin1String(hex)));
    EXPECT_EQ(usedBits(driver, channel, 1), "DI 4 8");
    EXPECT_EQ(usedBits(driver, channel, 2), "DO 4");
}

// A table that cannot be read to its end is no table: the addresses after that would count as unused.
TEST_F(TagTable, FailureAfterTheFirstRowStartsAnewLater)
{
    ProjectDatabase project(QStringList(), 1);
    ProjectDatabase::execute(
        QStringList()
        << QLatin1String("DROP TABLE custom_tag_table")
        << QLatin1String("CREATE TABLE tags (address, number)")
        << QLatin1String("INSERT INTO tags VALUES ('DI1', 1)")
        << QLatin1String("INSERT INTO tags VALUES ('DI3', 2000000000)")
        << QLatin1String("CREATE VIEW custom_tag_table AS SELECT address || "
                         "substr(length(zeroblob(number)), 1, 0) AS address, 1 AS connector_id FROM tags"));
    EXPECT_EQ(usedBits(driver, channel, 1), NoAddresses);
    ProjectDatabase::execute(QLatin1String("UPDATE tags SET address = 'DI5', number = 1"));
    EXPECT_EQ(usedBits(driver, channel, 1), "DI 4");
}
