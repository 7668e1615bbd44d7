#include "desk/link/settle_rules.h"

#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

TEST(SettleRules, AreOfAllStationsOrOfOne)
{
    ExchangeSettings settings;
    ASSERT_TRUE(applySettleRules(QStringLiteral("quiet:250, 7=off,255=quiet,0=echo"), settings));
    EXPECT_EQ(settings.settle.mode, SettleMode::Quiet);
    EXPECT_EQ(settings.settle.quietTime, 250);
    ASSERT_EQ(settings.stationSettle.size(), 3);
    EXPECT_EQ(settings.stationSettle[7].mode, SettleMode::Off);
    EXPECT_EQ(settings.stationSettle[255].mode, SettleMode::Quiet);
    EXPECT_EQ(settings.stationSettle[255].quietTime, 0);
    EXPECT_EQ(settings.stationSettle[0].mode, SettleMode::Echo);
    ASSERT_TRUE(applySettleRules(QStringLiteral("auto,7=quiet:3600000"), settings));
    EXPECT_EQ(settings.settle.mode, SettleMode::Auto);
    EXPECT_EQ(settings.stationSettle[7].quietTime, 3600000);
}

TEST(SettleRules, SayWhatWasExpected)
{
    for (const char *text : {"", "soon", "Quiet", "quiet:", "quiet:0", "quiet:3600001", "quiet:x", "echo:5",
                             "auto:1", "256=off", "1000=off", "=off", "7=", "7=soon", "-1=off", "off;echo"}) {
        ExchangeSettings settings;
        EXPECT_EQ(
            applySettleRules(QStringLiteral("5=off,") + QLatin1String(text), settings).errorText(),
            QStringLiteral("\"%1\": expected auto, echo, quiet, quiet:MS with up to 3600000 ms, or off, "
                           "or one of them for a station, as in 7=off")
                .arg(QLatin1String(text)));
    }
}
