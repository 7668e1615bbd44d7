#include "tests/desk/doctor/written_observations.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

// Where damaged replies are damaged, and what is said of them.

namespace
{

// 1 to 16: no byte looks like its neighbour.
QByteArray countedValues()
{
    QByteArray values;
    for (char value = 1; value <= 16; ++value)
        values += value;
    return values;
}

// Three replies that are damaged alike, beside a right one.
QString placeOf(const QByteArray &values, const QByteArray &damaged)
{
    Seen seen;
    seen.answer(20 * Seen::Millisecond, values);
    for (int i = 0; i < 3; ++i)
        seen.spoilt(damaged);
    return faultsOf(judge(damageExamination(), seen)).join(QLatin1Char(','));
}

QString nothingWorks(const std::vector<QByteArray> &damaged)
{
    Seen seen;
    seen.seen.working = -1;
    for (const QByteArray &bytes : damaged)
        seen.spoilt(bytes);
    const Judgement judgement = judge(damageExamination(), seen);
    EXPECT_FALSE(judgement.remedy.worksNow);
    return judgement.findings.front().name() + QStringLiteral(": ") + judgement.findings.front().sentence;
}

} // namespace

TEST(Damage, IsWhereTheReplyDiffersFromTheRightOne)
{
    const QByteArray values = countedValues();
    const QByteArray right = Seen::reply(values);
    const struct {
        QByteArray damaged;
        const char *fault;
        const char *what;
    } rows[] = {
        {right + "xy", "end-damaged", "more bytes behind it"},
        {"xy" + right, "beginning-damaged", "more bytes in front of it"},
        {right.left(19), "end-damaged", "its last bytes are missing"},
        {right.mid(2), "beginning-damaged", "its first bytes are missing"},
        {right.left(9) + right.mid(11), "anywhere-damaged", "bytes in its middle are missing"},
        {right.left(9) + "xy" + right.mid(9), "anywhere-damaged", "more bytes in its middle"},
        {right.left(9) + "xy" + right.mid(11), "anywhere-damaged", "others in its middle"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(placeOf(values, row.damaged), QLatin1String(row.fault)) << row.what;
}

// A byte is missing among equal ones: it may be any of them.
TEST(Damage, IsAnywhereWhereBothEndsAreAsNear)
{
    const QByteArray values = QByteArray(15, '\1') + '\2';
    EXPECT_EQ(placeOf(values, Seen::reply(values).remove(9, 1)), QStringLiteral("anywhere-damaged"));
}

TEST(Damage, LeavesTheCopyOfAnEchoingLineOut)
{
    const QByteArray right = Seen::reply(countedValues());
    const auto placeBehind = [&](const QByteArray &copy) {
        Seen seen;
        seen.answer(20 * Seen::Millisecond, countedValues());
        for (int i = 0; i < 3; ++i) {
            seen.spoilt(copy + right.left(19));
            seen.seen.asked.back().isEchoed = true;
        }
        return faultsOf(judge(damageExamination(), seen)).join(QLatin1Char(','));
    };
    EXPECT_EQ(placeBehind(Seen::read(8)), QStringLiteral("end-damaged"));
    EXPECT_EQ(placeBehind(Seen::read(8).mid(1)), QStringLiteral("anywhere-damaged"))
        << "the copy itself is damaged";
}

TEST(Damage, ShowsTheRightReplyWhereThereIsOne)
{
    const QByteArray right = Seen::reply(countedValues());
    const auto hasRight = [](const Seen &seen) {
        const Judgement judgement = judge(damageExamination(), seen);
        EXPECT_EQ(faultsOf(judgement), QStringList{"anywhere-damaged"});
        return !judgement.findings.front().evidence.filter(QStringLiteral("right: 01 03 10")).isEmpty();
    };
    Seen spoilt;
    spoilt.spoilt(right.left(19));
    EXPECT_FALSE(hasRight(spoilt));
    EXPECT_TRUE(hasRight(spoilt.answer(20 * Seen::Millisecond)));
}

TEST(Damage, OfEveryReplyIsToldByWhatCame)
{
    const QByteArray right = Seen::reply(countedValues());
    const QByteArray cut = right.left(12);
    QByteArray flipped = right;
    flipped[12] = 'x';
    EXPECT_EQ(nothingWorks({cut, cut, cut}), QStringLiteral("end-damaged: every reply is cut"));
    EXPECT_EQ(nothingWorks({cut, flipped, flipped}),
              QStringLiteral("anywhere-damaged: every reply is damaged"));
    EXPECT_EQ(nothingWorks({cut, cut}),
              QStringLiteral("garbled: something comes, and nothing of it is a frame"))
        << "two are too few to tell";
}

TEST(Damage, NeedsRetriesWhereTheGivenOnesAreTooFew)
{
    DoctorOptions options;
    const auto retries = [&](int given) {
        options.exchange.retries = given;
        Seen seen;
        seen.answer(20 * Seen::Millisecond).spoilt(Seen::reply("ab").left(5));
        return judge(damageExamination(), seen, options).remedy.retries;
    };
    EXPECT_EQ(retries(9), 10) << "half to the tenth power is a thousandth";
    EXPECT_EQ(retries(10), std::nullopt);
}
