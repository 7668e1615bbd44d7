#include "desk/doctor/remedy.h"
#include "tests/desk/doctor/written_observations.h"
#include "tests/peers/text_printing.h"
#include "tests/plants/plant_drawing.h"

#include <gtest/gtest.h>

// The command that is suggested.

namespace
{

// What it reads.
QString wordsOf(const DoctorOptions &options, const Remedy &remedy, const Observations &seen = {})
{
    const QStringList words = commandFor(options, remedy, seen);
    EXPECT_EQ(words.mid(0, 2), (QStringList{"driverhost", "read"}));
    return words.mid(3).join(QLatin1Char(' '));
}

QString wordOf(const QString &address, const QString &order, std::optional<Area> area = {})
{
    DoctorOptions options;
    options.wanted = {wantedAt(address)};
    Remedy remedy;
    remedy.order = order;
    remedy.area = area;
    return wordsOf(options, remedy);
}

} // namespace

TEST(Remedy, WritesTypesAndOrdersWhereTheyAreNotTheOrdinaryOnes)
{
    const struct {
        const char *wanted;
        const char *order;
        const char *word;
    } rows[] = {
        {"HR10", "", "HR10"},
        {"HR10", "BA", "HR10@BA"},
        {"HR10", "ABCD", "HR10"},
        {"HR10:u16", "", "HR10"},
        {"HR10:i16", "", "HR10:i16"},
        {"HR10:f32", "", "HR10:f32"},
        {"HR10:f32", "ABCD", "HR10:f32@ABCD"},
        {"HR10:f32@BADC", "", "HR10:f32@BADC"},
        {"HR10:f32@BADC", "ABCD", "HR10:f32@ABCD"},
        {"HR10:f32@BADC", "BA", "HR10:f32@BADC"},
        {"HR10:str4", "", "HR10:str4"},
        {"HR10.3:bit", "BA", "HR10.3"},
        {"DI3:bit", "BA", "DI3"},
        {"DI3:u8", "", "DI3:u8"},
        {"DI3:u8", "BA", "DI3:u8"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(wordOf(QLatin1String(row.wanted), QLatin1String(row.order)), QLatin1String(row.word))
            << row.wanted << " and " << row.order;
    EXPECT_EQ(wordOf(QStringLiteral("HR10"), QString(), Area::InputRegisters), QStringLiteral("IR10"));
}

TEST(Remedy, WritesTheTypeOfAWideValueThatWasNotGivenOne)
{
    DoctorOptions options;
    options.wanted = {wantedAt(QStringLiteral("HR10:u32"))};
    options.wanted.front().point.at.isTyped = false;
    EXPECT_EQ(wordsOf(options, {}), QStringLiteral("HR10:u32"));
}

TEST(Remedy, KeepsAddressesWithinTheArea)
{
    DoctorOptions options;
    options.wanted = {wantedAt(QStringLiteral("HR1")), wantedAt(QStringLiteral("HR65536"))};
    Remedy remedy;
    remedy.shift = -1;
    EXPECT_EQ(wordsOf(options, remedy), QStringLiteral("HR1 HR65535"));
    remedy.shift = 1;
    EXPECT_EQ(wordsOf(options, remedy), QStringLiteral("HR2 HR65536"));
}

TEST(Remedy, ReadsWhatWasNotRefusedAndNoMoreThanEight)
{
    DoctorOptions options;
    for (int number = 1; number <= 10; ++number)
        options.wanted.push_back(wantedAt(QStringLiteral("HR%1").arg(number)));
    Seen seen;
    seen.refusal(readRequest(1, Area::HoldingRegisters, 1, 1), 2);
    EXPECT_EQ(wordsOf(options, {}, seen.seen), QStringLiteral("HR1 HR3 HR4 HR5 HR6 HR7 HR8 HR9"));
    options.wanted = {options.wanted[1]};
    EXPECT_EQ(wordsOf(options, {}, seen.seen), QStringLiteral("HR1")) << "nothing is known to be readable";
    seen.answer(readRequest(1, Area::DiscreteInputs, 199, 1), 0, "\1");
    EXPECT_EQ(wordsOf(options, {}, seen.seen), QStringLiteral("DI200"));
    Remedy elsewhere;
    elsewhere.area = Area::InputRegisters;
    EXPECT_EQ(wordsOf(options, elsewhere, seen.seen), QStringLiteral("IR2"));
}

TEST(Remedy, QuotesWhatAShellWouldTakeApart)
{
    const struct {
        const char *word;
        const char *quoted;
    } rows[] = {{"HR10:f32@ABCD", "HR10:f32@ABCD"},
                {"rtutcp://gateway:502/1", "rtutcp://gateway:502/1"},
                {"", "''"},
                {"a b", "'a b'"},
                {"it's", "'it'\\''s'"},
                {"$HOME", "'$HOME'"}};
    for (const auto &row : rows)
        EXPECT_EQ(shellWord(QLatin1String(row.word)), QLatin1String(row.quoted)) << row.word;
}
