#include "kit/checks/all_checks.h"
#include "kit/link/outcome.h"
#include "kit/suite/check_run.h"
#include "tests/support/gtest_qt.h"

#include <gtest/gtest.h>

#include <csignal>
#include <set>
#include <unistd.h>

// What becomes of a check: of what it reports, of declared differences, of a process that does not come to
// its end.

namespace
{

using kit::Verdict;

class EmptySubject : public kit::Subject
{
public:
    kit::Samples samples() const override { return given; }
    QByteArray reply(const QByteArray & /*request*/) override { return QByteArray(); }
    kit::Differences differences() const override { return declared; }

    kit::Samples given;
    kit::Differences declared;
};

QString text(const char *latin1)
{
    return QLatin1String(latin1);
}

void reportTwice(kit::Trial &trial)
{
    trial.report(text("order"), text("chaos"));
    trial.report(text("order"), text("noise"));
}

void reportNothing(kit::Trial & /*trial*/) {}

void skip(kit::Trial &trial)
{
    trial.skip(text("no reason"));
}

void reportOften(kit::Trial &trial)
{
    for (int i = 0; i < 50; ++i)
        trial.report(text("order"), QString::number(i));
}

kit::Check checkOf(void (*run)(kit::Trial &trial))
{
    return {"topic.name", "Because.", run};
}

class TrialTest : public testing::Test
{
protected:
    Verdict verdictOf(void (*run)(kit::Trial &trial)) { return runHere(checkOf(run), settings, subject); }

    void declare(const char *check, const std::function<bool(const kit::Finding &)> &covers = nullptr)
    {
        subject.declared.push_back(kit::Difference{text(check), text("it is so"), covers});
    }

    EmptySubject subject;
    kit::Settings settings;
};

// Runs a check of the kit on a subject, without a driver.
Verdict verdictOfCheck(const char *id, EmptySubject &subject)
{
    for (const kit::Check &check : kit::allChecks())
        if (std::string(check.id) == id)
            return runHere(check, kit::Settings(), subject);
    ADD_FAILURE() << "no check " << id;
    return Verdict();
}

} // namespace

TEST_F(TrialTest, PassesWithoutFindings)
{
    EXPECT_EQ(verdictOf(reportNothing).state, Verdict::Passed);
}

TEST_F(TrialTest, FailsWithFindings)
{
    const Verdict verdict = verdictOf(reportTwice);
    EXPECT_EQ(verdict.state, Verdict::Failed);
    ASSERT_EQ(verdict.findings.size(), 2u);
    EXPECT_EQ(verdict.findings[1].happened, text("noise"));
}

TEST_F(TrialTest, KeepsTheFirstFindingsAndCountsAll)
{
    const Verdict verdict = verdictOf(reportOften);
    EXPECT_EQ(verdict.findingCount, 50);
    ASSERT_EQ(verdict.findings.size(), 3u);
    EXPECT_EQ(verdict.findings[0].happened, text("0"));
}

TEST_F(TrialTest, SkippedIsNeitherPassedNorFailed)
{
    const Verdict verdict = verdictOf(skip);
    EXPECT_EQ(verdict.state, Verdict::Skipped);
    EXPECT_EQ(verdict.skipped, text("no reason"));
}

TEST_F(TrialTest, ADifferenceCoversAllFindingsOfItsCheck)
{
    declare("topic.name");
    declare("topic.other");
    const Verdict verdict = verdictOf(reportTwice);
    EXPECT_EQ(verdict.state, Verdict::Differs);
    EXPECT_EQ(verdict.reasons, QStringList(text("it is so")));
    EXPECT_TRUE(verdict.findings.empty());
}

TEST_F(TrialTest, WhatADifferenceDoesNotCoverFails)
{
    declare("topic.name", [](const kit::Finding &finding) { return finding.happened == text("chaos"); });
    const Verdict verdict = verdictOf(reportTwice);
    EXPECT_EQ(verdict.state, Verdict::Failed);
    ASSERT_EQ(verdict.findings.size(), 1u);
    EXPECT_EQ(verdict.findings[0].happened, text("noise"));
}

TEST_F(TrialTest, ADifferenceThatDoesNotShowFails)
{
    declare("topic.name");
    const Verdict verdict = verdictOf(reportNothing);
    EXPECT_EQ(verdict.state, Verdict::Failed);
    ASSERT_EQ(verdict.findings.size(), 1u);
    EXPECT_EQ(verdict.findings[0].expected, text("the declared difference: it is so"));
}

TEST_F(TrialTest, ADifferenceOfWhatIsSkippedStays)
{
    declare("topic.name");
    EXPECT_EQ(verdictOf(skip).state, Verdict::Skipped);
}

TEST_F(TrialTest, WithoutADriverAllOthersAreSkipped)
{
    settings.plugin = text("/nowhere/libnothing.so");
    const auto ask = [](kit::Trial &trial) { EXPECT_EQ(trial.driver(), nullptr); };
    EXPECT_EQ(verdictOf(ask).state, Verdict::Skipped);
}

TEST_F(TrialTest, AFindingComesFromTheOtherProcessAsItIs)
{
    const Verdict here = runHere(checkOf(reportTwice), settings, subject);
    const Verdict isolated = runIsolated(checkOf(reportTwice), settings, subject);
    EXPECT_EQ(isolated.state, here.state);
    EXPECT_EQ(isolated.findingCount, here.findingCount);
    ASSERT_EQ(isolated.findings.size(), here.findings.size());
    EXPECT_EQ(isolated.findings[0].expected, here.findings[0].expected);
    EXPECT_EQ(isolated.findings[0].happened, here.findings[0].happened);
}

TEST_F(TrialTest, ACrashFailsTheCheckAlone)
{
    const auto crash = [](kit::Trial &trial) {
        trial.report(text("order"), text("chaos"));
        static_cast<void>(write(STDERR_FILENO, "last words\n", 11));
        std::signal(SIGTERM, SIG_DFL);
        raise(SIGTERM);
    };
    const Verdict verdict = runIsolated(checkOf(crash), settings, subject);
    EXPECT_EQ(verdict.state, Verdict::Failed);
    ASSERT_EQ(verdict.findings.size(), 1u);
    EXPECT_TRUE(verdict.findings[0].happened.startsWith(text("the process ended by signal 15")));
    EXPECT_EQ(verdict.findings[0].frames, text("last words"));
}

TEST_F(TrialTest, AnEndOfTheProcessFails)
{
    const auto leave = [](kit::Trial & /*trial*/) { _exit(7); };
    const Verdict verdict = runIsolated(checkOf(leave), settings, subject);
    EXPECT_EQ(verdict.state, Verdict::Failed);
    ASSERT_EQ(verdict.findings.size(), 1u);
    EXPECT_EQ(verdict.findings[0].happened, text("the process ended with exit code 7"));
}

TEST_F(TrialTest, AHangFailsAfterTheTime)
{
    settings.timeout = 1;
    const auto hang = [](kit::Trial & /*trial*/) {
        for (;;)
            pause();
    };
    const Verdict verdict = runIsolated(checkOf(hang), settings, subject);
    EXPECT_EQ(verdict.state, Verdict::Failed);
    ASSERT_EQ(verdict.findings.size(), 1u);
    EXPECT_EQ(verdict.findings[0].happened, text("the check was not over after 1 seconds"));
}

TEST(AllChecks, HaveIdsOfTheirOwnAndASentence)
{
    std::set<std::string> ids;
    for (const kit::Check &check : kit::allChecks()) {
        EXPECT_TRUE(ids.insert(check.id).second) << check.id;
        const std::string why = check.why;
        EXPECT_EQ(why.back(), '.') << check.id;
        EXPECT_EQ(why.find('|'), std::string::npos) << check.id;
    }
    EXPECT_GT(ids.size(), 50u);
}

TEST(BothWays, NeedsASampleThatReadsAndOneThatWrites)
{
    EmptySubject subject;
    EXPECT_EQ(verdictOfCheck("commands.both-ways", subject).findingCount, 2);
    subject.given.push_back(kit::readOf(WordItem, text("D1"), 1));
    EXPECT_EQ(verdictOfCheck("commands.both-ways", subject).findingCount, 1);
    subject.given.push_back(kit::writeOf(WordItem, text("D1"), 1, QByteArray(2, 'x')));
    EXPECT_EQ(verdictOfCheck("commands.both-ways", subject).state, Verdict::Passed);
}
