#include "drivers/modbus_rtu_slave_over_tcp/project/station_tag.h"

#include <gtest/gtest.h>

#include <ostream>

namespace
{

struct TagCase {
    const char *text; // in UTF-8
    bool isTag;
    StationTag tag;
};

void PrintTo(const TagCase &tagCase, std::ostream *stream)
{
    *stream << tagCase.text;
}

const StationTag NoTag = {0, false, 0};

const TagCase Cases[] = {
    {"2-DI5", true, {2, false, 5}},
    {"2-DO5", true, {2, true, 5}},
    {"2-FN5DO5", true, {2, true, 5}},
    {"2-fn5do5", true, {2, true, 5}},
    {"2-dO5", true, {2, true, 5}},
    {"002-DI0005", true, {2, false, 5}},
    {"2-DI5 and more", true, {2, false, 5}},
    {"2-DI5.7", true, {2, false, 5}},
    {"4294967295-DI4294967295", true, {4294967295u, false, 4294967295u}},
    {"4294967296-DI99999999999999999999", true, {0, false, 0}},
    {"\u0663-DI\u0664", true, {0, false, 0}},
    {"", false, NoTag},
    {"DI5", false, NoTag},
    {"-DI5", false, NoTag},
    {" 2-DI5", false, NoTag},
    {"2DI5", false, NoTag},
    {"2--DI5", false, NoTag},
    {"2-DI", false, NoTag},
    {"2-D", false, NoTag},
    {"2-", false, NoTag},
    {"2", false, NoTag},
    {"2-HR5", false, NoTag},
    {"2-FN6DO5", false, NoTag},
    {"2-FN5DI5", false, NoTag},
    {"2-FN5DO", false, NoTag},
    {"2-DI-5", false, NoTag},
    {"2-D\u04655", false, NoTag},
};

class StationTagTest : public testing::TestWithParam<TagCase>
{
};

} // namespace

TEST_P(StationTagTest, IsTakenApart)
{
    StationTag tag = {77, true, 77};
    ASSERT_EQ(splitStationTag(QString::fromUtf8(GetParam().text), tag), GetParam().isTag);
    const StationTag expected = GetParam().isTag ? GetParam().tag : StationTag{77, true, 77};
    EXPECT_EQ(tag.station, expected.station);
    EXPECT_EQ(tag.isCoil, expected.isCoil);
    EXPECT_EQ(tag.number, expected.number);
}

INSTANTIATE_TEST_SUITE_P(Texts, StationTagTest, testing::ValuesIn(Cases));
