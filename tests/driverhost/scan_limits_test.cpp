#include "tests/driverhost/support/slave_test.h"

namespace
{

SlaveOptions withHolesAndSmallRequests()
{
    SlaveOptions options;
    options.memory.addHole({0, Area::HoldingRegisters, 9, 19});
    options.memory.addHole({0, Area::HoldingRegisters, 49, 49});
    options.limits.registers = 10;
    return options;
}

} // namespace

class ScanLimitsTest : public SlaveTest
{
protected:
    ScanLimitsTest() : SlaveTest(withHolesAndSmallRequests()) {}
};

TEST_F(ScanLimitsTest, LosesNoAddressOfASlaveThatGivesFewAtOnce)
{
    const HostRun run = host(QStringLiteral("scan TARGET HR --to 100 --delay 0"));
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, QStringLiteral("HR1..9\nHR21..49\nHR51..100\n"));
}

TEST_F(ScanLimitsTest, DoesNotAskForTooManyAgain)
{
    EXPECT_EQ(host(QStringLiteral("scan TARGET HR --from 101 --to 500 --delay 0")).out,
              QStringLiteral("HR101..500\n"));
    // Refused are 64, 32 and 16; what follows goes by 8.
    EXPECT_EQ(slave.counts().requests, 3u + 400u / 8u);
}
