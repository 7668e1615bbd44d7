#include "desk/doctor/observing/wanted_value.h"
#include "desk/wire/rtu_frame.h"
#include "tests/peers/text_printing.h"
#include "tests/plants/plant_drawing.h"

#include <gtest/gtest.h>

// Whether a value is the one that was expected, and where it would be read.

namespace
{

struct Compared {
    const char *address;
    const char *expected;
    const char *value; // in hexadecimal
    bool fits;
    double factor = 1;
};

bool isFit(const Wanted &wanted, const char *value, double factor = 1)
{
    Guess guess;
    guess.factor = factor;
    return fits(wanted, QByteArray::fromHex(value), guess);
}

} // namespace

TEST(WantedValue, FitsToTheDigitsThatWereGiven)
{
    const Compared rows[] = {
        {"HR1", "18", "0012", true},          {"HR1", "19", "0012", false},
        {"HR1", "12.5", "000c", false},       {"HR1", "many", "0012", false},
        {"HR1:f32", "20", "41a20000", true},  {"HR1:f32", "20.0", "41a20000", false},
        {"HR1:f32", "20", "41a40000", true},  {"HR1:f32", "20", "41a60000", false},
        {"HR1:f32", "20", "7fc00000", false}, {"HR1:bcd16", "20", "00fa", false},
        {"HR1:str4", "AB", "41420000", true}, {"HR1:str4", "AB", "41430000", false},
        {"HR1", "18", "00b4", true, 10},      {"HR1", "18", "00b4", false},
        {"HR1", "18", "0012", false, 10},
    };
    for (const Compared &row : rows)
        EXPECT_EQ(isFit(wantedAt(row.address, row.expected), row.value, row.factor), row.fits)
            << row.address << " = " << row.expected << ": " << row.value;
}

TEST(WantedValue, FitsAsItIsShownWhereItIsScaled)
{
    const auto fitsTenths = [](const char *expected) {
        Wanted wanted = wantedAt(QStringLiteral("HR1"), QLatin1String(expected));
        wanted.point.scaling.scale = 0.1;
        return isFit(wanted, "0012");
    };
    EXPECT_TRUE(fitsTenths("1.8"));
    EXPECT_TRUE(fitsTenths("2")) << "1.8 is 2 to one digit";
    EXPECT_FALSE(fitsTenths("1.9"));
    EXPECT_FALSE(fitsTenths("18"));
}

TEST(WantedValue, FitsWithinItsLimits)
{
    Wanted number = wantedAt(QStringLiteral("HR1:f32"));
    EXPECT_FALSE(number.isJudged());
    number.point.low = -5;
    EXPECT_TRUE(number.isJudged());
    EXPECT_TRUE(isFit(number, "40a00000"));
    EXPECT_TRUE(isFit(number, "00000000"));
    EXPECT_FALSE(isFit(number, "c0c00000")) << "below";
    EXPECT_FALSE(isFit(number, "0000c0a0")) << "so near to 0 that the order is a wrong one";
    number.point.low.reset();
    number.point.high = 5;
    EXPECT_TRUE(number.isJudged());
    EXPECT_TRUE(isFit(number, "c0c00000"));
    EXPECT_FALSE(isFit(number, "40c00000")) << "above";
    Wanted text = wantedAt(QStringLiteral("HR1:str4"));
    text.point.low = 0;
    EXPECT_FALSE(isFit(text, "41420000")) << "no number";
}

TEST(WantedValue, StandsInTheReply)
{
    const auto value = [](const char *address, const char *reply) {
        return valueIn(QByteArray::fromHex(reply), wantedAt(QLatin1String(address)));
    };
    EXPECT_EQ(value("HR1", "0103021234b533"), QByteArray::fromHex("1234"));
    EXPECT_EQ(value("HR1:u32", "01030412345678ffff"), QByteArray::fromHex("56781234"));
    EXPECT_EQ(value("DI1:bit", "0102010160 48"), QByteArray::fromHex("01"));
    EXPECT_EQ(value("DI1:bit", "010201006048"), QByteArray::fromHex("00"));
}

TEST(WantedValue, IsReadWhereAGuessSays)
{
    const auto request = [](const char *address, int shift, bool isInOtherArea = false) {
        Guess guess;
        guess.shift = shift;
        guess.isInOtherArea = isInOtherArea;
        return requestFor(1, wantedAt(QLatin1String(address)), guess);
    };
    EXPECT_EQ(request("HR10:f32", 0), readRequest(1, Area::HoldingRegisters, 9, 2));
    EXPECT_EQ(request("HR10:f32", 1), readRequest(1, Area::HoldingRegisters, 10, 2));
    EXPECT_EQ(request("HR10:f32", 0, true), readRequest(1, Area::InputRegisters, 9, 2));
    EXPECT_EQ(request("DI3:bit", -1, true), readRequest(1, Area::Coils, 1, 1));
    EXPECT_EQ(request("HR1", -1), QByteArray()) << "below the first";
    EXPECT_EQ(request("HR65536", 0), readRequest(1, Area::HoldingRegisters, 65535, 1));
    EXPECT_EQ(request("HR65536", 1), QByteArray()) << "above the last";
    EXPECT_EQ(request("HR65535:f32", 1), QByteArray()) << "above the last by its second half";
}

TEST(WantedValue, AreasHaveLettersAndACounterpart)
{
    const struct {
        Area area;
        Area other;
        const char *letters;
        int function;
    } rows[] = {{Area::Coils, Area::DiscreteInputs, "DO", 1},
                {Area::DiscreteInputs, Area::Coils, "DI", 2},
                {Area::HoldingRegisters, Area::InputRegisters, "HR", 3},
                {Area::InputRegisters, Area::HoldingRegisters, "IR", 4}};
    for (const auto &row : rows) {
        EXPECT_EQ(otherArea(row.area), row.other) << row.letters;
        EXPECT_EQ(lettersOf(row.area), QLatin1String(row.letters));
        EXPECT_EQ(readFunction(row.area), row.function) << row.letters;
        EXPECT_EQ(areaOfFunction(row.function), row.area) << row.letters;
    }
}
