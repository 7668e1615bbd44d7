#include "tests/peers/driver_link.h"
#include "tests/peers/test_files.h"
#include "tests/simulation/panel/panel_run.h"

#include <gtest/gtest.h>

namespace
{

const qint64 Hour = 3600 * qint64(1000000);

class Years : public testing::Test
{
protected:
    static void SetUpTestSuite() { ASSERT_TRUE(layProjectBesideProgram()); }
};

RunReport reportOf(quint32 seed, qint64 time, SettleMode mode = SettleMode::Auto)
{
    PanelRun run(pluginFile(), seed, mode);
    run.runUntil(time);
    return run.report();
}

} // namespace

TEST_F(Years, HaveNoProblem)
{
    for (quint32 seed = 1; seed <= 12; ++seed) {
        PanelRun run(pluginFile(), seed);
        run.runUntil(3 * Hour);
        EXPECT_EQ("", run.report().problem) << "seed " << seed;
        EXPECT_GT(run.episodes(), 20);
        EXPECT_GT(run.report().failures, 0u);
    }
}

TEST_F(Years, AreTheSameForTheSameSeed)
{
    const RunReport one = reportOf(7, Hour);
    const RunReport same = reportOf(7, Hour);
    const RunReport other = reportOf(8, Hour);
    EXPECT_EQ(one.digest, same.digest);
    EXPECT_EQ(one.values, same.values);
    EXPECT_EQ(one.failures, same.failures);
    EXPECT_NE(one.digest, other.digest);
}

TEST_F(Years, ShowWrongValuesWithoutSettling)
{
    int wrong = 0;
    for (quint32 seed = 1; seed <= 12; ++seed) {
        const std::string problem = reportOf(seed, 3 * Hour, SettleMode::Off).problem;
        wrong += problem.find("a wrong value") != std::string::npos ? 1 : 0;
        std::cout << "seed " << seed << ": " << problem << '\n';
    }
    EXPECT_GE(wrong, 3);
}
