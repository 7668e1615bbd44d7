#include "desk/items/address.h"
#include "desk/items/target.h"
#include "desk/project/device_text.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

namespace
{

QString problemWith(const char *text)
{
    return parseAddress(QLatin1String(text)).errorText();
}

Address parsed(const char *text)
{
    const Result<Address> address = parseAddress(QLatin1String(text));
    EXPECT_TRUE(address) << text << ": " << address.errorText().toStdString();
    return address.valueOr(Address());
}

Target targetOf(const char *text)
{
    const Result<Target> target = parseTarget(QLatin1String(text));
    EXPECT_TRUE(target) << text << ": " << target.errorText().toStdString();
    return target.valueOr(Target());
}

bool isRefused(const char *target)
{
    const Result<Target> parsedTarget = parseTarget(QLatin1String(target));
    return !parsedTarget && !parsedTarget.errorText().isEmpty();
}

} // namespace

TEST(HostAddress, TakesEveryAreaInAnyCase)
{
    EXPECT_EQ(parsed("HR100").area, Area::HoldingRegisters);
    EXPECT_EQ(parsed("fn6hr12").area, Area::HoldingRegisters);
    EXPECT_EQ(parsed("IR3").area, Area::InputRegisters);
    EXPECT_EQ(parsed("di17").area, Area::DiscreteInputs);
    EXPECT_EQ(parsed("Do5").area, Area::Coils);
    EXPECT_EQ(parsed("FN5DO5").area, Area::Coils);
    EXPECT_EQ(parsed("fn5do12").text(), QStringLiteral("FN5DO12"));
}

TEST(HostAddress, CountsFromOneAndGoesToTheEndOfTheArea)
{
    EXPECT_EQ(parsed("HR1").wireOffset(), 0);
    EXPECT_EQ(parsed("HR65536").wireOffset(), 65535);
    EXPECT_TRUE(problemWith("HR0").contains(QLatin1String("1 to 65536")));
    EXPECT_TRUE(problemWith("HR65537").contains(QLatin1String("1 to 65536")));
    EXPECT_TRUE(problemWith("HR99999999999999999999").contains(QLatin1String("1 to 65536")));
}

TEST(HostAddress, TakesTheStationOff)
{
    EXPECT_EQ(parsed("2-HR100").station, 2);
    EXPECT_EQ(parsed("2-HR100").text(), QStringLiteral("HR100"));
    EXPECT_EQ(parsed("HR100").station, -1);
    EXPECT_TRUE(problemWith("256-HR1").contains(QLatin1String("0 to 255")));
}

TEST(HostAddress, TakesBitsOfRegistersOnly)
{
    EXPECT_EQ(parsed("HR7.3").bit, 3);
    EXPECT_EQ(parsed("HR7").bit, -1);
    EXPECT_EQ(parsed("HR7.15").text(), QStringLiteral("HR7.15"));
    EXPECT_TRUE(problemWith("HR7.16").contains(QLatin1String("0 to 15")));
    EXPECT_TRUE(problemWith("HR7.").contains(QLatin1String("no bit number")));
    EXPECT_TRUE(problemWith("DO5.1").contains(QLatin1String("bits themselves")));
}

TEST(HostAddress, KnowsTheMarkOfTheWordOrder)
{
    EXPECT_TRUE(parsed("HRSW10").highWordFirst);
    EXPECT_TRUE(parsed("hr10sw").highWordFirst);
    EXPECT_TRUE(parsed("FN6HRSW10").highWordFirst);
    EXPECT_FALSE(parsed("HR10").highWordFirst);
    EXPECT_EQ(parsed("IR10SW").text(), QStringLiteral("IRSW10"));
    EXPECT_TRUE(problemWith("SW10").contains(QLatin1String("no area")));
    EXPECT_TRUE(problemWith("DOSW1").contains(QLatin1String("bits")));
    EXPECT_TRUE(problemWith("HRSW1.2").contains(QLatin1String("no bit number")));
}

TEST(HostAddress, SaysWhatIsWrong)
{
    EXPECT_TRUE(problemWith("RH10").contains(QLatin1String("unknown area \"RH\"")));
    EXPECT_TRUE(problemWith("RH10").contains(QLatin1String("HR100")));
    EXPECT_TRUE(problemWith("").contains(QLatin1String("no area")));
    EXPECT_TRUE(problemWith("HR").contains(QLatin1String("no number")));
    EXPECT_TRUE(problemWith("100").contains(QLatin1String("no area")));
    for (const char *text : {"HR10x", "HR10-2", "HR 10", "HR-1", "HR10SW5", "HR1.2.3", "-HR1", "FN3HR1",
                             "HR\n1", "FN", "FN:5", "FNDO5", "[5", "\xC4R5"})
        EXPECT_FALSE(problemWith(text).isEmpty()) << text;
}

TEST(HostTarget, TakesNamesAndBothKindsOfAddresses)
{
    EXPECT_EQ(targetOf("rtutcp://plc.example:4001/17").host, QStringLiteral("plc.example"));
    EXPECT_EQ(targetOf("rtutcp://plc.example:4001/17").port, 4001);
    EXPECT_EQ(targetOf("rtutcp://plc.example:4001/17").station, 17);
    EXPECT_EQ(targetOf("rtutcp://10.0.0.5").host, QStringLiteral("10.0.0.5"));
    EXPECT_EQ(targetOf("rtutcp://10.0.0.5").port, 502);
    EXPECT_EQ(targetOf("rtutcp://10.0.0.5/").station, 1);
    EXPECT_EQ(targetOf("rtutcp://[::1]:1502/3").host, QStringLiteral("::1"));
    EXPECT_EQ(targetOf("rtutcp://[fe80::2]:1502/3").port, 1502);
}

TEST(HostTarget, RefusesWhatIsNone)
{
    for (const char *text : {"tcp://host/1", "rtutcp://", "rtutcp://host:0", "rtutcp://host:65536",
                             "rtutcp://host/256", "rtutcp://host/x", "rtutcp://host/1/2", "rtutcp://host/1?x",
                             "rtutcp://host/1#x", "rtutcp://me@host/1"})
        EXPECT_TRUE(isRefused(text)) << text;
}

TEST(HostTarget, LetsNoDeviceTextPassThatStopsTheDriver)
{
    for (const char *text : {"ETHERNET", "ethernet0", "Ethernet-2", "COM1", "tty12"})
        EXPECT_TRUE(checkDeviceText(QLatin1String(text))) << text;
    for (const char *text : {"", "COM", "123", "COM1 ", "COM99999999999"})
        EXPECT_FALSE(checkDeviceText(QLatin1String(text))) << text;
}
