#include "tests/peers/driver_link.h"
#include "tests/peers/raw_master.h"
#include "tests/peers/scripted_peer.h"
#include "tests/peers/text_printing.h"
#include "tests/peers/waiting.h"

#include <gtest/gtest.h>

// Where the bytes of a reply lie in the stream, and when they come, to the byte.

namespace
{

using Values = std::vector<int>;

const int ReadRequest = 8;

class RealSocketStream : public testing::Test
{
protected:
    RealSocketStream() { EXPECT_TRUE(layProjectBesideProgram()); }
};

TEST_F(RealSocketStream, ReplyCutAtEveryByte)
{
    const QByteArray reply = frameOf("0103041111AAAA");
    ScriptedPeer peer([&](ScriptedPeer &slave) {
        for (int first = 1; first < reply.size(); ++first) {
            slave.receive(ReadRequest);
            slave.send(reply.left(first));
            slave.send(reply.mid(first));
        }
    });
    DriverLink link(channelTo(peer.port()));
    for (int first = 1; first < reply.size(); ++first)
        EXPECT_EQ((Values{0x1111, 0xAAAA}), link.readWords("HR1", 2)) << link.error().toStdString();
}

// The reply that was refused goes on after the next request has been sent.
TEST_F(RealSocketStream, TailOfARefusedReplyBehindTheNextRequest)
{
    const QByteArray foreign = frameOf("0203041111AAAA");
    for (int tail = 1; tail <= foreign.size() - 5; ++tail) {
        ScriptedPeer peer([&](ScriptedPeer &slave) {
            slave.receive(ReadRequest);
            slave.send(foreign.left(foreign.size() - tail));
            slave.receive(ReadRequest);
            slave.send(foreign.right(tail) + frameOf("0103042222BBBB"));
            slave.receive(ReadRequest);
            slave.send(frameOf("0103043333CCCC"));
        });
        DriverLink link(channelTo(peer.port()));
        EXPECT_TRUE(link.readWords("HR1", 2).empty());
        EXPECT_EQ("invalid slave id:2", link.error());
        EXPECT_EQ((Values{0x2222, 0xBBBB}), link.readWords("HR3", 2)) << tail;
        EXPECT_EQ((Values{0x3333, 0xCCCC}), link.readWords("HR5", 2)) << tail << link.error().toStdString();
    }
}

// A second reply to the first request comes when the next one has been sent, which asks for something else.
TEST_F(RealSocketStream, LateReplyOfAnotherShape)
{
    ScriptedPeer peer([&](ScriptedPeer &slave) {
        slave.receive(ReadRequest);
        slave.send(frameOf("0203041111AAAA"));
        slave.receive(ReadRequest);
        slave.send(frameOf("0103041111AAAA") + frameOf("0103064444BBBB7777"));
        slave.receive(ReadRequest);
        slave.send(frameOf("0103041111AAAA") + frameOf("0104043333CCCC"));
        slave.receive(ReadRequest);
        slave.send(frameOf("0103023333"));
    });
    DriverLink link(channelTo(peer.port()));
    EXPECT_TRUE(link.readWords("HR1", 2).empty());
    EXPECT_EQ("invalid slave id:2", link.error());
    EXPECT_TRUE(link.readWords("HR3", 3).empty());
    EXPECT_EQ("CRC error", link.error());
    EXPECT_EQ((Values{0x3333, 0xCCCC}), link.readWords("IR1", 2));
    EXPECT_EQ(Values{0x3333}, link.readWords("HR5"));
}

TEST_F(RealSocketStream, BytesThatCameUnaskedAreThrownAway)
{
    const QByteArray unasked = frameOf("0103029999");
    ScriptedPeer peer([&](ScriptedPeer &slave) {
        slave.send(unasked);
        for (int i = 0; i < 5; ++i) {
            slave.receive(ReadRequest);
            slave.send(frameOf("0103021111") + unasked + unasked.left(i));
        }
    });
    DriverLink link(channelTo(peer.port()));
    QByteArray discarded;
    link.channel().setObserver([&](ChannelEvent event, const QByteArray &bytes) {
        if (event == ChannelEvent::Discarded)
            discarded += bytes;
    });
    ASSERT_TRUE(link.channel().open());
    ASSERT_TRUE(waitUntil([&] {
        char first = 0;
        return link.channel().readData(&first, 1) == 1;
    }));
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(Values{0x1111}, link.readWords("HR1")) << link.error().toStdString();
    EXPECT_TRUE(discarded.startsWith(unasked.mid(1) + unasked));
}

// The last replies of a slave that closes after each of them.
TEST_F(RealSocketStream, ReplyAndEndInOneGo)
{
    ScriptedPeer peer([](ScriptedPeer &slave) {
        slave.receive(ReadRequest);
        slave.send(frameOf("0103021111"));
    });
    DriverLink link(channelTo(peer.port()));
    EXPECT_EQ(Values{0x1111}, link.readWords("HR1")) << link.error().toStdString();
}

TEST_F(RealSocketStream, EndWithinAReply)
{
    const QByteArray reply = frameOf("0103021111");
    for (int size = 0; size < reply.size(); ++size) {
        ScriptedPeer peer([&](ScriptedPeer &slave) {
            slave.receive(ReadRequest);
            slave.send(reply.left(size));
        });
        DriverLink link(channelTo(peer.port(), 5000));
        EXPECT_TRUE(link.readWords("HR1").empty());
        EXPECT_EQ(size == 0  ? "PLC no response"
                  : size < 5 ? "received bytes < 5"
                             : "packet loss",
                  link.error());
        EXPECT_FALSE(link.channel().isConnected());
    }
}

} // namespace
