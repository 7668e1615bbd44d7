#include "desk/time_text.h"
#include "desk/wire/frame_text.h"
#include "desk/wire/rtu_frame.h"
#include "desk/wire/trace.h"

#include <gtest/gtest.h>

#include <QStringList>

#include <ostream>
#include <random>

namespace
{

QByteArray frame(const char *hexWithoutCrc)
{
    return withCrc(QByteArray::fromHex(hexWithoutCrc));
}

std::string request(const QByteArray &bytes)
{
    return describeFrame(FrameRole::Request, bytes).toStdString();
}

std::string reply(const QByteArray &bytes, const QByteArray &asked = QByteArray())
{
    return describeFrame(FrameRole::Reply, bytes, asked).toStdString();
}

const QDateTime afternoon(QDate(2024, 3, 1), QTime(13, 5, 9, 7), Qt::OffsetFromUTC, -5400);

TEST(TraceFrame, CrcOfAKnownRequest)
{
    EXPECT_EQ(QByteArray::fromHex("010300000001840A"), frame("010300000001"));
    EXPECT_TRUE(hasGoodCrc(QByteArray::fromHex("010300000001840A")));
    EXPECT_FALSE(hasGoodCrc(QByteArray::fromHex("0103000000010A84")));
    EXPECT_FALSE(hasGoodCrc(QByteArray::fromHex("840A")));
    EXPECT_FALSE(hasGoodCrc(QByteArray()));
}

TEST(TraceFrame, EveryRequestSize)
{
    for (const char *head : {"0101", "0102", "0103", "0104", "0105", "0106"})
        EXPECT_EQ(8, requestSize(QByteArray::fromHex(head)));
    EXPECT_EQ(9 + 2, requestSize(QByteArray::fromHex("010F0000000902")));
    EXPECT_EQ(9 + 4, requestSize(QByteArray::fromHex("01100000000204")));
    EXPECT_EQ(SizeNeedsMoreBytes, requestSize(QByteArray::fromHex("011000000002")));
    EXPECT_EQ(SizeNeedsMoreBytes, requestSize(QByteArray::fromHex("01")));
    EXPECT_EQ(SizeUnknown, requestSize(QByteArray::fromHex("01100000000205")));
    EXPECT_EQ(SizeUnknown, requestSize(QByteArray::fromHex("0107")));
}

TEST(TraceFrame, EveryReplySize)
{
    EXPECT_EQ(5 + 7, replySize(QByteArray::fromHex("010107")));
    EXPECT_EQ(5 + 250, replySize(QByteArray::fromHex("0104FA")));
    EXPECT_EQ(5, replySize(QByteArray::fromHex("018302")));
    for (const char *head : {"010500", "010600", "010F00", "011000"})
        EXPECT_EQ(8, replySize(QByteArray::fromHex(head)));
    EXPECT_EQ(SizeNeedsMoreBytes, replySize(QByteArray::fromHex("0103")));
    EXPECT_EQ(SizeUnknown, replySize(QByteArray::fromHex("016300")));

    EXPECT_EQ(5 + 2, replySizeFor(frame("010100000009")));
    EXPECT_EQ(5 + 250, replySizeFor(frame("01030000007D")));
    EXPECT_EQ(8, replySizeFor(frame("01060000007D")));
}

TEST(TraceDescribe, ReadRequests)
{
    EXPECT_EQ("station 1, read coils, DO17..26 (offset 16, quantity 10), CRC good",
              request(frame("01010010000A")));
    EXPECT_EQ("station 2, read discrete inputs, DI1 (offset 0, quantity 1), CRC good",
              request(frame("020200000001")));
    EXPECT_EQ("station 1, read holding registers, HR100..109 (offset 99, quantity 10), CRC good",
              request(frame("01030063000A")));
    EXPECT_EQ("station 255, read input registers, IR65536 (offset 65535, quantity 1), CRC good",
              request(frame("FF04FFFF0001")));
}

TEST(TraceDescribe, WriteRequests)
{
    EXPECT_EQ("station 1, write single coil, DO6 (offset 5, quantity 1), on, CRC good",
              request(frame("01050005FF00")));
    EXPECT_EQ("station 1, write single coil, DO6 (offset 5, quantity 1), off, CRC good",
              request(frame("010500050000")));
    EXPECT_EQ("station 1, write single coil, DO6 (offset 5, quantity 1), neither on nor off (1), CRC good",
              request(frame("010500050001")));
    EXPECT_EQ("station 1, write single register, HR2 (offset 1, quantity 1), value 258, CRC good",
              request(frame("010600010102")));
    EXPECT_EQ(
        "station 0, write multiple coils, DO1..10 (offset 0, quantity 10), values 10110010 11, CRC good",
        request(frame("000F0000000A024DFF")));
    EXPECT_EQ(
        "station 1, write multiple registers, HR11..12 (offset 10, quantity 2), values 1 65535, CRC good",
        request(frame("0110000A0002040001FFFF")));
}

TEST(TraceDescribe, WhatIsWrongWithARequest)
{
    EXPECT_EQ("station 1, read holding registers, HR1 (offset 0, quantity 1), CRC bad",
              request(QByteArray::fromHex("0103000000010A84")));
    EXPECT_EQ("station 1, read holding registers, HR1 (offset 0, quantity 0), incomplete: 3 of 8 bytes",
              request(QByteArray::fromHex("010300")));
    EXPECT_EQ("station 1, read holding registers, HR1 (offset 0, quantity 1), CRC good, then 3 bytes",
              request(frame("010300000001") + "abc"));
    EXPECT_EQ("station 1, function 99, CRC good", request(frame("016301")));
    EXPECT_EQ("incomplete: 1 byte", request(QByteArray::fromHex("01")));
    EXPECT_EQ("incomplete: 0 bytes", request(QByteArray()));
}

TEST(TraceDescribe, RepliesToTheirRequests)
{
    EXPECT_EQ(
        "station 1, read holding registers, HR100..101 (offset 99, quantity 2), values 4660 1, CRC good",
        reply(frame("01030412340001"), frame("010300630002")));
    EXPECT_EQ("station 1, read coils, DO1..10 (offset 0, quantity 10), values 10110010 11, CRC good",
              reply(frame("0101024DFF"), frame("01010000000A")));
    EXPECT_EQ("station 1, write multiple registers, HR11..12 (offset 10, quantity 2), CRC good",
              reply(frame("0110000A0002"), frame("0110000A0002040001FFFF")));
    EXPECT_EQ("station 1, write single coil, DO6 (offset 5, quantity 1), on, CRC good",
              reply(frame("01050005FF00"), frame("01050005FF00")));
}

TEST(TraceDescribe, RepliesWithoutTheirRequests)
{
    EXPECT_EQ("station 1, read input registers, byte count 4, values 4660 1, CRC good",
              reply(frame("01040412340001")));
    EXPECT_EQ("station 1, read coils, byte count 1, values 10110010, CRC good", reply(frame("0101014D")));
    EXPECT_EQ("station 1, read holding registers, byte count 0, no values, CRC good", reply(frame("010300")));
    EXPECT_EQ("station 1, read holding registers, byte count 3, values 1 and half a register, CRC good",
              reply(frame("010303000102")));
}

TEST(TraceDescribe, Exceptions)
{
    const QByteArray asked = frame("010300000001");
    const QStringList names{"unknown",
                            "illegal function",
                            "illegal data address",
                            "illegal data value",
                            "server device failure",
                            "acknowledge",
                            "server device busy",
                            "negative acknowledge",
                            "memory parity error",
                            "unknown",
                            "gateway path unavailable",
                            "gateway target device failed to respond",
                            "unknown"};
    for (int code = 0; code < names.size(); ++code) {
        const QByteArray bytes = withCrc(QByteArray::fromHex("0183") + static_cast<char>(code));
        EXPECT_EQ(QStringLiteral("station 1, read holding registers, exception %1 (%2), CRC good")
                      .arg(code)
                      .arg(names.at(code))
                      .toStdString(),
                  reply(bytes, asked));
    }
}

TEST(TraceDescribe, RepliesThatDoNotAnswer)
{
    const QByteArray asked = frame("010300000002");
    EXPECT_EQ("station 2, read holding registers, HR1..2 (offset 0, quantity 2), values 1 2, not station 1, "
              "CRC good",
              reply(frame("02030400010002"), asked));
    EXPECT_EQ(
        "station 1, read input registers, byte count 4, values 1 2, not the function requested, CRC good",
        reply(frame("01040400010002"), asked));
    EXPECT_EQ("station 1, read holding registers, HR1..2 (offset 0, quantity 2), values 1, byte count 2 "
              "instead of 4, CRC good",
              reply(frame("0103020001"), asked));
    EXPECT_EQ(
        "station 1, write single register, HR2 (offset 1, quantity 1), value 4, not what was requested, "
        "CRC good",
        reply(frame("010600010004"), frame("010600010003")));
    EXPECT_EQ(
        "station 1, read holding registers, HR1..2 (offset 0, quantity 2), values 1, incomplete: 5 of 9 "
        "bytes",
        reply(QByteArray::fromHex("0103040001"), asked));
    EXPECT_EQ("station 1, write single register, exception 4 (server device failure), not the function "
              "requested, CRC good",
              reply(frame("018604"), asked));
}

// Whatever bytes come, what is printed stays on one line; sanitizers see what is read.
TEST(TraceDescribe, AnyBytesMakeOneLine)
{
    std::mt19937 random(20240301);
    const auto randomBytes = [&random](int longest) {
        QByteArray bytes(static_cast<int>(random() % static_cast<quint32>(longest + 1)), '\0');
        for (char &byte : bytes)
            byte = static_cast<char>(random() & 0xFF);
        if (bytes.size() > 1 && random() % 2 == 0)
            bytes[1] = static_cast<char>(random() % 17);
        return bytes;
    };
    for (int i = 0; i < 20000; ++i) {
        const QByteArray asked = randomBytes(12);
        const QByteArray bytes = randomBytes(300);
        const QString text =
            describeFrame(FrameRole::Request, bytes) + describeFrame(FrameRole::Reply, bytes, asked);
        ASSERT_FALSE(text.contains(QLatin1Char('\n')));
        ASSERT_FALSE(text.isEmpty());
    }
}

TEST(TraceLine, HasTimeDirectionBytesAndMeaning)
{
    const QByteArray bytes = QByteArray::fromHex("0103AF");
    EXPECT_EQ("13:05:09.007-01:30 > 01 03 AF  why",
              traceLine(afternoon, FrameDirection::Sent, bytes, "why").toStdString());
    EXPECT_EQ("13:05:09.007-01:30 < 01 03 AF  why",
              traceLine(afternoon, FrameDirection::Received, bytes, "why").toStdString());
    EXPECT_EQ("13:05:09.007-01:30 ! 01 03 AF  why",
              traceLine(afternoon, FrameDirection::Dropped, bytes, "why").toStdString());
    EXPECT_EQ("13:05:09.007-01:30 - closed", traceEvent(afternoon, "closed").toStdString());
}

TEST(TimeText, HasDateAndOffset)
{
    EXPECT_EQ("2024-03-01T13:05:09.007-01:30", dateAndTimeText(afternoon).toStdString());
    EXPECT_EQ("+00:00", utcOffsetText(QDateTime(afternoon.date(), afternoon.time(), Qt::UTC)).toStdString());
    EXPECT_EQ(
        "+05:45",
        utcOffsetText(QDateTime(afternoon.date(), afternoon.time(), Qt::OffsetFromUTC, 20700)).toStdString());
}

TEST(TraceLine, MeaningIsNoFormat)
{
    EXPECT_EQ("13:05:09.007-01:30 > 01  %1 %2 50%",
              traceLine(afternoon, FrameDirection::Sent, QByteArray(1, '\x01'), "%1 %2 50%").toStdString());
    EXPECT_EQ("13:05:09.007-01:30 - %1 %2", traceEvent(afternoon, "%1 %2").toStdString());
}

} // namespace
