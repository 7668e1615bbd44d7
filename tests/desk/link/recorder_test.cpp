#include "desk/link/recorder.h"

#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

TEST(Recorder, SaysWhyItCannotWrite)
{
    Recorder none(QString(), QStringLiteral("ETHERNET"), 3);
    EXPECT_TRUE(none.open());
    EXPECT_TRUE(none.write()) << "nothing is to be kept";
    const QTemporaryDir folder;
    Recorder noFile(folder.path(), QStringLiteral("ETHERNET"), 3);
    EXPECT_TRUE(noFile.open().errorText().startsWith(QStringLiteral("--record %1: ").arg(folder.path())));
    Recorder full(QStringLiteral("/dev/full"), QStringLiteral("ETHERNET"), 3);
    ASSERT_TRUE(full.open());
    EXPECT_TRUE(full.write().errorText().startsWith(QLatin1String("--record /dev/full: ")));
}

TEST(Recorder, KeepsWhatTheDriverSees)
{
    RecordedExchanges exchanges;
    exchanges.add(ChannelEvent::Received, "early"); // before anything was sent
    exchanges.add(ChannelEvent::Sent, "a");
    exchanges.add(ChannelEvent::Received, "b");
    exchanges.add(ChannelEvent::Received, "c");
    exchanges.add(ChannelEvent::Withheld, "d");
    const kit::Recording recording = exchanges.recording({}, QStringLiteral("failed"));
    ASSERT_EQ(recording.exchanges.size(), 2u);
    EXPECT_EQ(recording.exchanges[0].reply, QByteArray("bc"));
    EXPECT_EQ(recording.exchanges[1].request, QByteArray("d"));
    EXPECT_TRUE(recording.exchanges[1].reply.isEmpty());
}
