#include "desk/snapshot/restoration.h"

#include "tests/peers/driver_link.h"
#include "tests/peers/running_slave.h"
#include "tests/peers/test_files.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

namespace
{

// Registers from `first` on and coils that are to hold these values; their numbers count from 0.
WriteRun runAt(Area area, int first, const std::vector<quint16> &values)
{
    std::vector<Difference> differences;
    for (size_t i = 0; i < values.size(); ++i)
        differences.push_back({1, area, first + static_cast<int>(i), values[i], quint16(0)});
    return writesOf(differences, WriteStyle::Together).front();
}

LinkSettings settingsFor(quint16 port)
{
    LinkSettings settings;
    settings.channel = channelTo(port, 3000);
    return settings;
}

std::optional<Restored> stateAt(const Restoration &restoration, int station, Area area, int offset)
{
    return restoration.stateOf({station, area, offset, quint16(0), quint16(0)});
}

class RestorationTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { ASSERT_TRUE(layProjectBesideProgram()); }

    RunningSlave slave;
    Session session{pluginFile(), settingsFor(slave.port())};
    Restoration restoration{{runAt(Area::HoldingRegisters, 4, {7, 8}), runAt(Area::HoldingRegisters, 6, {9}),
                             runAt(Area::HoldingRegisters, 20, {10}), runAt(Area::Coils, 0, {1, 1})}};
};

} // namespace

TEST_F(RestorationTest, SaysHowFarItHasCome)
{
    EXPECT_EQ(restoration.addresses(), 6);
    EXPECT_EQ(restoration.label(0), QStringLiteral("1-HR5..6"));
    EXPECT_EQ(restoration.lines(), QStringList{QStringLiteral("not sent: 1-HR5..7 and 1-HR21 and 1-DO1..2")});
    ASSERT_TRUE(restoration.write(session, 0));
    EXPECT_EQ(stateAt(restoration, 1, Area::HoldingRegisters, 5), Restored::Written);
    ASSERT_TRUE(restoration.verify(session, 0));
    ASSERT_TRUE(restoration.write(session, 1));
    slave.inject({Fault::Exception, 2});
    EXPECT_FALSE(restoration.write(session, 2));
    slave.inject({Fault::Silence, -1});
    session.setTimeout(60);
    EXPECT_FALSE(restoration.write(session, 3));
    EXPECT_EQ(restoration.lines(),
              (QStringList{"written and verified: 1-HR5..6", "written, not verified: 1-HR7",
                           "sent but not confirmed, perhaps written: 1-DO1..2", "refused: 1-HR21"}));
    EXPECT_EQ(restoration.count(Restored::Verified), 2);
    EXPECT_EQ(slave.value(1, Area::HoldingRegisters, 5), 8);
}

TEST_F(RestorationTest, ReadsBackWhatItHasWritten)
{
    ASSERT_TRUE(restoration.write(session, 0));
    ASSERT_TRUE(restoration.write(session, 3));
    slave.setValue(1, Area::HoldingRegisters, 5, 99);
    slave.setValue(1, Area::Coils, 0, 0);
    ASSERT_TRUE(restoration.verify(session, 0));
    ASSERT_TRUE(restoration.verify(session, 3));
    EXPECT_EQ(restoration.mismatches(),
              (QStringList{"1-HR6: wrote 8, read back 99", "1-DO1: wrote 1, read back 0"}));
    EXPECT_EQ(restoration.lines().value(1),
              QStringLiteral("written, and read back as something else: 1-HR6 and 1-DO1"));
    slave.stop();
    EXPECT_FALSE(restoration.verify(session, 0));
    EXPECT_EQ(stateAt(restoration, 1, Area::HoldingRegisters, 4), Restored::Verified) << "as it was";
}

TEST_F(RestorationTest, KnowsItsAddressesOnly)
{
    EXPECT_EQ(stateAt(restoration, 1, Area::HoldingRegisters, 4), Restored::NotSent);
    for (const int offset : {3, 7, 21})
        EXPECT_FALSE(stateAt(restoration, 1, Area::HoldingRegisters, offset)) << offset;
    EXPECT_FALSE(stateAt(restoration, 2, Area::HoldingRegisters, 4));
    EXPECT_FALSE(stateAt(restoration, 1, Area::InputRegisters, 4));
}

TEST(Restored, HasAWordForPrograms)
{
    const struct {
        Restored state;
        const char *name;
    } cases[] = {
        {Restored::Verified, "verified"},   {Restored::Written, "written"},
        {Restored::Different, "different"}, {Restored::Unconfirmed, "unconfirmed"},
        {Restored::Refused, "refused"},     {Restored::NotSent, "not-sent"},
    };
    for (const auto &one : cases)
        EXPECT_EQ(nameOf(one.state), QLatin1String(one.name));
}
