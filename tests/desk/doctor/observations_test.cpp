#include "desk/doctor/observing/evidence.h"
#include "tests/desk/doctor/written_observations.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

// What observations say together, and how they are shown.

namespace
{

const qint64 Millisecond = Seen::Millisecond;

QByteArray read(int station, Area area)
{
    return readRequest(station, area, 0, 1);
}

Asked withResult(AskResult result)
{
    Asked asked;
    asked.request = Seen::read(1);
    asked.result = result;
    asked.wait = 2000 * Millisecond;
    return asked;
}

} // namespace

TEST(Observations, OnlyRepliesOfTheWorkingStationAreTimed)
{
    Seen seen;
    seen.answer(20 * Millisecond).refusal(2).silence();
    EXPECT_EQ(seen.seen.timed().size(), 2U);
    seen.answer(read(2, Area::HoldingRegisters), 0, "ab").refusal(modbus::GatewayTargetFailed);
    EXPECT_EQ(seen.seen.timed().size(), 2U) << "another station, and the gateway in the station's place";
    seen.answer(20 * Millisecond).seen.asked.back().purpose = Purpose::Length;
    EXPECT_EQ(seen.seen.timed().size(), 2U) << "a very long one";
}

TEST(Observations, TheFirstReadIsOneOfTheWorkingStation)
{
    Seen seen;
    EXPECT_EQ(seen.seen.firstRead(), nullptr);
    seen.answer(read(2, Area::HoldingRegisters), 0, "ab")
        .answer(withCrc(QByteArray::fromHex("01080000a537")), 0, "");
    EXPECT_EQ(seen.seen.firstRead(), nullptr) << "another station, and no read";
    seen.answer(read(1, Area::Coils), 0, "\1");
    ASSERT_NE(seen.seen.firstRead(), nullptr);
    EXPECT_EQ(seen.seen.firstRead()->function(), modbus::ReadCoils);
}

TEST(Observations, TheLastRefusalOfAnAreaIsNoneOfItsLength)
{
    Seen seen;
    seen.refusal(2).refusal(read(2, Area::HoldingRegisters), 3).refusal(read(1, Area::Coils), 4);
    seen.refusal(6).seen.asked.back().purpose = Purpose::Length;
    seen.answer(20 * Millisecond);
    ASSERT_NE(seen.seen.refusalOf(Area::HoldingRegisters), nullptr);
    EXPECT_EQ(seen.seen.refusalOf(Area::HoldingRegisters)->exception(), 2);
    EXPECT_EQ(seen.seen.refusalOf(Area::Coils)->exception(), 4);
    EXPECT_EQ(seen.seen.refusalOf(Area::InputRegisters), nullptr);
}

TEST(Observations, APacketComesUnaskedOrForDifferentRequests)
{
    const auto isPacket = [](SkippedPart::Kind kind, std::vector<int> asked) {
        Seen seen;
        seen.silence().silence().silent(read(5, Area::Coils));
        for (const int index : asked) {
            seen.stray(10, "beat");
            seen.seen.strays.back().asked = index;
            seen.seen.strays.back().kind = kind;
        }
        return seen.seen.isPacket("beat");
    };
    EXPECT_TRUE(isPacket(SkippedPart::Noise, {-1}));
    EXPECT_TRUE(isPacket(SkippedPart::Noise, {0, 2}));
    EXPECT_FALSE(isPacket(SkippedPart::Noise, {0, 1})) << "the same request, twice";
    EXPECT_FALSE(isPacket(SkippedPart::Noise, {0}));
    EXPECT_FALSE(isPacket(SkippedPart::OtherFrame, {-1}));
    EXPECT_FALSE(isPacket(SkippedPart::Noise, {}));
}

TEST(Observations, NoiseBehindADamagedReplyBelongsToIt)
{
    const auto isOfReply = [](qint64 at, bool isDamaged) {
        Seen seen;
        if (isDamaged)
            seen.spoilt("abcdef"); // at 1 s
        else
            seen.silence();
        seen.stray(at, "x");
        return seen.seen.isOfReply(seen.seen.strays.back());
    };
    EXPECT_TRUE(isOfReply(1500, true));
    EXPECT_FALSE(isOfReply(22000, true)) << "far too late";
    EXPECT_FALSE(isOfReply(500, true)) << "before anything was asked";
    EXPECT_FALSE(isOfReply(1500, false));
}

TEST(Evidence, SaysWhatCameOfARequest)
{
    const auto lastLine = [](const Asked &asked) { return evidenceOf(asked).last(); };
    EXPECT_EQ(lastLine(withResult(AskResult::Silent)),
              QStringLiteral("  2.000 s   nothing came within 2.0 s"));
    EXPECT_EQ(lastLine(withResult(AskResult::Ended)), QStringLiteral("  0.000 s   the connection ended"));
    EXPECT_EQ(lastLine(withResult(AskResult::Unsent)), QStringLiteral("  0.000 s   not sent, no connection"));
    EXPECT_EQ(lastLine(withResult(AskResult::Damaged)), QStringLiteral("    CRC wrong"));
    EXPECT_EQ(lastLine(withResult(AskResult::Noise)), QStringLiteral("  0.000 s > 01 03 00 00 00 01 84 0A"));
    Asked longer = withResult(AskResult::OtherLength);
    longer.repliedAt = 12 * Millisecond;
    EXPECT_EQ(lastLine(longer), QStringLiteral("    after 12 ms"));
}

TEST(Evidence, ShowsAReplyThatCameLate)
{
    Asked asked = withResult(AskResult::Refused);
    asked.reply = QByteArray::fromHex("018302c0f1");
    asked.repliedAt = 2500 * Millisecond;
    asked.isLate = true;
    EXPECT_EQ(evidenceOf(asked),
              (QStringList{"  0.000 s > 01 03 00 00 00 01 84 0A", "  2.500 s < 01 83 02 C0 F1",
                           "    exception 2 (illegal data address) after 2.5 s"}));
}

TEST(Evidence, ShowsTextAsText)
{
    EXPECT_EQ(receivedText(0, "Hi!\r\n"), QStringLiteral("  0.000 s < 48 69 21 0D 0A \"Hi!\\r\\n\""));
    EXPECT_EQ(receivedText(0, "Hi"), QStringLiteral("  0.000 s < 48 69")) << "too short to tell";
    EXPECT_EQ(receivedText(0, "Hi!\x7f"), QStringLiteral("  0.000 s < 48 69 21 7F"));
    EXPECT_EQ(receivedText(0, "Hi!\x01"), QStringLiteral("  0.000 s < 48 69 21 01"));
    EXPECT_EQ(
        receivedText(0, QByteArray(33, 'a')),
        QStringLiteral("  0.000 s < 61 61 61 61 61 61 ... \"%1...\"").arg(QString(32, QLatin1Char('a'))));
}
