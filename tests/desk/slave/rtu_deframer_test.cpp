#include "desk/slave/rtu_deframer.h"

#include "desk/wire/rtu_frame.h"
#include "tests/peers/raw_master.h"

#include <gtest/gtest.h>

#include <QList>

#include <ostream>
#include <random>

namespace
{

const QList<QByteArray> &someRequests()
{
    static const QList<QByteArray> requests{
        frameOf("010100000008"),       frameOf("020200000008"),           frameOf("010300000002"),
        frameOf("F7040000007D"),       frameOf("01050005FF00"),           frameOf("010600010102"),
        frameOf("010F0000000A024DFF"), frameOf("0110000A0002040001FFFF"),
    };
    return requests;
}

QList<QByteArray> framesOf(RtuDeframer &deframer)
{
    QList<QByteArray> frames;
    for (QByteArray frame = deframer.next(); !frame.isEmpty(); frame = deframer.next())
        frames.append(frame);
    return frames;
}

QList<QByteArray> framesIn(const QByteArray &bytes)
{
    RtuDeframer deframer;
    deframer.add(bytes);
    return framesOf(deframer);
}

TEST(RtuDeframer, FindsEveryKindOfRequest)
{
    for (const QByteArray &request : someRequests())
        EXPECT_EQ(QList<QByteArray>{request}, framesIn(request));
}

TEST(RtuDeframer, TakesTheLargestWrites)
{
    const QByteArray registers = withCrc(QByteArray::fromHex("01100000007BF6") + QByteArray(246, '\x03'));
    const QByteArray coils = withCrc(QByteArray::fromHex("010F000007B0F6") + QByteArray(246, '\x03'));
    EXPECT_EQ((QList<QByteArray>{registers, coils}), framesIn(registers + coils));
}

TEST(RtuDeframer, DoesNotWaitForWritesThatNoFrameCarries)
{
    // 254 bytes of values would make a frame of 263.
    const QByteArray tooLong = QByteArray::fromHex("01100000007FFE");
    RtuDeframer deframer;
    deframer.add(tooLong + someRequests().front());
    EXPECT_EQ(QList<QByteArray>{someRequests().front()}, framesOf(deframer));
    EXPECT_EQ(tooLong, deframer.takeDropped());
    deframer.giveUp();
    EXPECT_TRUE(deframer.takeDropped().isEmpty()) << "there is nothing to give up";
}

TEST(RtuDeframer, MergedSegments)
{
    EXPECT_EQ(someRequests(), framesIn(someRequests().join()));
}

TEST(RtuDeframer, AnySplit)
{
    const QByteArray stream = someRequests().join();
    for (int first = 1; first < stream.size(); ++first) {
        RtuDeframer deframer;
        deframer.add(stream.left(first));
        QList<QByteArray> frames = framesOf(deframer);
        deframer.add(stream.mid(first));
        frames += framesOf(deframer);
        ASSERT_EQ(someRequests(), frames) << first;
        ASSERT_TRUE(deframer.takeDropped().isEmpty());
        ASSERT_FALSE(deframer.isPending());
    }
}

TEST(RtuDeframer, OneByteAtATime)
{
    RtuDeframer deframer;
    QList<QByteArray> frames;
    for (const char byte : someRequests().join()) {
        deframer.add(QByteArray(1, byte));
        frames += framesOf(deframer);
    }
    EXPECT_EQ(someRequests(), frames);
}

TEST(RtuDeframer, NothingBeforeTheLastByte)
{
    for (const QByteArray &request : someRequests()) {
        RtuDeframer deframer;
        deframer.add(request.left(request.size() - 1));
        EXPECT_TRUE(deframer.next().isEmpty());
        EXPECT_TRUE(deframer.isPending());
    }
}

TEST(RtuDeframer, DropsARequestWithAWrongCrcAndFindsTheNext)
{
    QByteArray broken = someRequests().at(2);
    broken[7] = static_cast<char>(broken.at(7) ^ 1);
    RtuDeframer deframer;
    deframer.add(broken + someRequests().at(5));
    EXPECT_EQ(QList<QByteArray>{someRequests().at(5)}, framesOf(deframer));
    EXPECT_EQ(broken, deframer.takeDropped());
    EXPECT_TRUE(deframer.takeDropped().isEmpty());
}

// Every kind of noise in front of a request is passed over at once, without waiting for silence.
TEST(RtuDeframer, NoiseInFrontOfARequest)
{
    const QByteArray request = someRequests().at(2);
    for (const char *noise : {"00", "FF", "AABB", "0103", "01630102", "0083", "41424344454647480D0A"}) {
        RtuDeframer deframer;
        deframer.add(QByteArray::fromHex(noise) + request);
        EXPECT_EQ(QList<QByteArray>{request}, framesOf(deframer)) << noise;
        EXPECT_EQ(QByteArray::fromHex(noise), deframer.takeDropped());
    }
}

// The data of a write may hold a whole request; it must not be taken out while the write is on its way.
TEST(RtuDeframer, RequestWithinTheDataOfAnother)
{
    const QByteArray inner = frameOf("010600010102");
    const QByteArray outer = withCrc(QByteArray::fromHex("01100000000408") + inner);
    RtuDeframer deframer;
    deframer.add(outer.left(outer.size() - 1));
    EXPECT_TRUE(deframer.next().isEmpty());
    deframer.add(outer.right(1));
    EXPECT_EQ(QList<QByteArray>{outer}, framesOf(deframer));
}

TEST(RtuDeframer, AfterSilenceTheRestIsLookedAtAnew)
{
    const QByteArray inner = frameOf("010600010102");
    RtuDeframer deframer;
    deframer.add(QByteArray::fromHex("01100000000810") + inner);
    EXPECT_TRUE(deframer.next().isEmpty());
    deframer.giveUp();
    EXPECT_EQ(QList<QByteArray>{inner}, framesOf(deframer));
    EXPECT_EQ(QByteArray::fromHex("01100000000810"), deframer.takeDropped());
}

// A function that is not known here ends where its CRC does.
TEST(RtuDeframer, UnknownFunctions)
{
    const QByteArray shortest = frameOf("0107");
    const QByteArray longer = frameOf("01160004 00F2 0025");
    EXPECT_EQ((QList<QByteArray>{shortest, longer}), framesIn(shortest + longer));
}

TEST(RtuDeframer, UnknownFunctionWithoutAnEndIsDropped)
{
    RtuDeframer deframer;
    deframer.add(QByteArray::fromHex("0163") + QByteArray(modbus::MaxFrameSize, '\0'));
    EXPECT_TRUE(deframer.next().isEmpty());
    EXPECT_GE(deframer.takeDropped().size(), 1);
}

// Whatever noise there was, one silence later the slave understands again.
TEST(RtuDeframer, RecoversFromAnyNoise)
{
    std::mt19937 random(7);
    const QByteArray request = someRequests().at(6);
    for (int round = 0; round < 3000; ++round) {
        QByteArray noise(static_cast<int>(random() % 40), '\0');
        for (char &byte : noise)
            byte = static_cast<char>(random() % (round % 2 == 0 ? 256 : 20));
        RtuDeframer deframer;
        deframer.add(noise);
        framesOf(deframer);
        while (deframer.isPending()) {
            deframer.giveUp();
            framesOf(deframer);
        }
        deframer.takeDropped();
        deframer.add(request);
        ASSERT_EQ(QList<QByteArray>{request}, framesOf(deframer)) << noise.toHex().constData();
    }
}

// Every byte is either part of a frame, dropped, or still waiting.
TEST(RtuDeframer, LosesNoByte)
{
    std::mt19937 random(8);
    QByteArray stream;
    for (int i = 0; i < 300; ++i) {
        stream += someRequests().at(static_cast<int>(random() % 8));
        if (random() % 3 == 0)
            stream += QByteArray(static_cast<int>(random() % 9), static_cast<char>(random() & 0xFF));
    }
    RtuDeframer deframer;
    QByteArray seen;
    for (int at = 0; at < stream.size();) {
        const int size = static_cast<int>(random() % 30) + 1;
        deframer.add(stream.mid(at, size));
        at += size;
        for (QByteArray frame = deframer.next(); !frame.isEmpty(); frame = deframer.next())
            seen += deframer.takeDropped() + frame;
        seen += deframer.takeDropped();
        ASSERT_TRUE(stream.startsWith(seen));
    }
    while (deframer.isPending()) {
        deframer.giveUp();
        for (QByteArray frame = deframer.next(); !frame.isEmpty(); frame = deframer.next())
            seen += deframer.takeDropped() + frame;
        seen += deframer.takeDropped();
    }
    EXPECT_EQ(stream, seen);
}

} // namespace
