#include "desk/channel/reply_finder.h"

#include "tests/doubles/frames.h"
#include "tests/support/gtest_qt.h"

#include <string>
#include <vector>

namespace
{

const QByteArray readTwo = framed("05 03 00 10 00 02");
const QByteArray replyTwo = framed("05 03 04 11 22 33 44");
const QByteArray exception = framed("05 83 02");
const QByteArray noise = fromHex("05 00 03 FF 83 05");

QByteArray flipped(QByteArray bytes, int index, int bit = 0)
{
    bytes[index] = static_cast<char>(bytes.at(index) ^ (1 << bit));
    return bytes;
}

// "noise 6, other 9": the parts in front of a reply.
std::string partsText(const ReplyFinder &finder)
{
    const char *const names[] = {"noise", "other", "copy", "confirmation"};
    std::string text;
    int end = 0;
    for (const SkippedPart &part : finder.parts()) {
        EXPECT_EQ(part.start, end) << "a gap between parts";
        end = part.start + part.size;
        text += (text.empty() ? "" : ", ") + std::string(names[part.kind]) + " " + std::to_string(part.size);
    }
    return text;
}

struct FindCase {
    const char *name;
    QByteArray request;
    QByteArray before;
    QByteArray reply;
    ReplyFinder::Verdict verdict;
    const char *parts;
};

const QByteArray writeMany = framed("05 10 00 10 00 01 02 12 34");
const QByteArray confirmMany = framed("05 10 00 10 00 01");
const QByteArray writeOne = framed("05 06 00 10 12 34");
const QByteArray readBits = framed("05 01 00 10 00 14");
const QByteArray replyBits = framed("05 01 03 01 02 03");

const std::vector<FindCase> &cases()
{
    static const std::vector<FindCase> list = {
        {"alone", readTwo, {}, replyTwo, ReplyFinder::Answer, ""},
        {"exception", readTwo, {}, exception, ReplyFinder::Answer, ""},
        {"noise", readTwo, noise, replyTwo, ReplyFinder::Answer, "noise 6"},
        {"other station", readTwo, framed("06 03 04 11 22 33 44"), replyTwo, ReplyFinder::Answer, "other 9"},
        {"other function", readTwo, framed("05 04 04 11 22 33 44"), replyTwo, ReplyFinder::Answer, "other 9"},
        {"exception of another", readTwo, framed("06 83 02"), replyTwo, ReplyFinder::Answer, "other 5"},
        {"another master's request", readTwo, framed("05 03 00 20 00 03"), replyTwo, ReplyFinder::Answer,
         "other 8"},
        {"echo", readTwo, readTwo, replyTwo, ReplyFinder::Answer, "copy 8"},
        {"echo as long as the reply", readBits, readBits, replyBits, ReplyFinder::Answer, "copy 8"},
        {"all of it", readTwo, noise + readTwo + framed("06 83 02") + noise, exception, ReplyFinder::Answer,
         "noise 6, copy 8, other 5, noise 6"},
        {"damaged", readTwo, {}, flipped(replyTwo, 5), ReplyFinder::Damaged, ""},
        {"damaged after noise", readTwo, noise, flipped(replyTwo, 5), ReplyFinder::Damaged, "noise 6"},
        {"damaged after others", readTwo, framed("06 83 02"), flipped(replyTwo, 8), ReplyFinder::Damaged,
         "other 5"},
        {"damaged exception", readTwo, {}, flipped(exception, 2), ReplyFinder::Damaged, ""},
        {"damaged count", readTwo, {}, flipped(replyTwo, 2, 6), ReplyFinder::Damaged, ""},
        {"of another length", readTwo, {}, framed("05 03 02 11 22"), ReplyFinder::OtherAnswer, ""},
        {"longer", readTwo, {}, framed("05 03 06 11 22 33 44 55 66"), ReplyFinder::OtherAnswer, ""},
        {"empty", readTwo, {}, framed("05 03 00"), ReplyFinder::OtherAnswer, ""},
        {"confirmation", writeMany, {}, confirmMany, ReplyFinder::Answer, ""},
        {"echo of a long write", writeMany, writeMany, confirmMany, ReplyFinder::Answer, "copy 11"},
        {"confirmation of another place", writeMany, framed("05 10 00 11 00 01"), confirmMany,
         ReplyFinder::Answer, "confirmation 8"},
        {"confirmation of another length", writeMany, framed("05 10 00 10 00 02"), confirmMany,
         ReplyFinder::Answer, "confirmation 8"},
        {"confirmation of a single write", writeOne, {}, writeOne, ReplyFinder::Answer, ""},
        {"confirmation of another register", writeOne, framed("05 06 00 11 12 34"), writeOne,
         ReplyFinder::Answer, "confirmation 8"},
        {"probe", framed("05 08 00 00 12 34"), framed("05 08 00 00 12 33"), framed("05 08 00 00 12 34"),
         ReplyFinder::Answer, "other 8"},
    };
    return list;
}

} // namespace

TEST(ReplyFinder, FindsTheReplyWhateverIsInFrontOfIt)
{
    for (const FindCase &test : cases()) {
        ReplyFinder finder(test.request, false);
        EXPECT_EQ(test.verdict, finder.search(test.before + test.reply)) << test.name;
        EXPECT_EQ(test.before.size(), finder.replyStart()) << test.name;
        EXPECT_EQ(test.parts, partsText(finder)) << test.name;
    }
}

// Where a stream is cut must not matter; it may only be known earlier that a reply is damaged.
TEST(ReplyFinder, FindsItByteByByte)
{
    for (const FindCase &test : cases()) {
        ReplyFinder finder(test.request, false);
        const QByteArray stream = test.before + test.reply;
        ReplyFinder::Verdict verdict = ReplyFinder::NotYet;
        for (int size = 1; size <= stream.size() && verdict == ReplyFinder::NotYet; ++size)
            verdict = finder.search(stream.left(size));
        const bool isLate = test.verdict == ReplyFinder::OtherAnswer;
        if (isLate && verdict == ReplyFinder::Damaged)
            continue;
        EXPECT_EQ(test.verdict, verdict) << test.name;
        EXPECT_EQ(test.before.size(), finder.replyStart()) << test.name;
        EXPECT_EQ(test.parts, partsText(finder)) << test.name;
    }
}

TEST(ReplyFinder, WaitsForTheLastByte)
{
    for (const FindCase &test : cases()) {
        for (int missing = 1; missing < test.reply.size(); ++missing) {
            ReplyFinder finder(test.request, false);
            const QByteArray stream = test.before + test.reply;
            const ReplyFinder::Verdict verdict = finder.search(stream.left(stream.size() - missing));
            const bool mayBeDamaged = test.verdict == ReplyFinder::OtherAnswer;
            EXPECT_TRUE(verdict == ReplyFinder::NotYet || (mayBeDamaged && verdict == ReplyFinder::Damaged))
                << test.name << " without " << missing;
        }
    }
}

TEST(ReplyFinder, IsNotHeldUpByWhatOnlyBeginsLikeAFrame)
{
    // A reply of 255 bytes of data could begin here.
    ReplyFinder finder(readTwo, false);
    EXPECT_EQ(ReplyFinder::Answer, finder.search(fromHex("07 03 FF") + replyTwo));
    EXPECT_EQ("noise 3", partsText(finder));
}

TEST(ReplyFinder, TakesASingleWritesSecondFrameOnALineThatEchoes)
{
    ReplyFinder finder(writeOne, true);
    EXPECT_EQ(ReplyFinder::NotYet, finder.search(writeOne));
    EXPECT_EQ(ReplyFinder::Answer, finder.search(writeOne + writeOne));
    EXPECT_EQ("copy 8", partsText(finder));
}

TEST(ReplyFinder, TakesWhatBeginsLikeAReplyWhenTheTimeIsOver)
{
    ReplyFinder finder(readTwo, false);
    const QByteArray stream = noise + framed("06 83 02") + replyTwo.left(4);
    EXPECT_EQ(ReplyFinder::NotYet, finder.search(stream));
    EXPECT_EQ(-1, finder.replyStart());
    finder.giveUp(stream);
    EXPECT_EQ(11, finder.replyStart());
    EXPECT_EQ("noise 6, other 5", partsText(finder));

    ReplyFinder foreign(readTwo, false);
    EXPECT_EQ(ReplyFinder::NotYet, foreign.search(framed("06 83 02")));
    foreign.giveUp(framed("06 83 02"));
    EXPECT_EQ(-1, foreign.replyStart());
    EXPECT_EQ("other 5", partsText(foreign));
}

TEST(ReplyFinder, ToldWhichRepliesItCanTell)
{
    EXPECT_TRUE(ReplyFinder::canTell(readTwo));
    EXPECT_TRUE(ReplyFinder::canTell(writeMany));
    EXPECT_FALSE(ReplyFinder::canTell(framed("00 06 00 10 12 34"))) << "nobody answers a broadcast";
    EXPECT_FALSE(ReplyFinder::canTell(flipped(readTwo, 7)));
    EXPECT_FALSE(ReplyFinder::canTell(framed("05 2B 0E 01 00")));
    EXPECT_FALSE(ReplyFinder::canTell(fromHex("3A 30 31")));
    EXPECT_FALSE(ReplyFinder::canTell({}));
}
