#include "kit/report/junit_report.h"
#include "kit/report/text_report.h"
#include "tests/support/gtest_qt.h"

#include <gtest/gtest.h>

#include <QXmlStreamReader>

// What people and continuous integration read of a run.

namespace
{

using kit::Verdict;

QString text(const char *latin1)
{
    return QLatin1String(latin1);
}

kit::Result resultOf(Verdict::State state)
{
    kit::Result result = {{"channel.echo", "Lines echo.", nullptr}, Verdict()};
    result.verdict.state = state;
    return result;
}

kit::Result failedResult()
{
    kit::Result result = resultOf(Verdict::Failed);
    kit::Finding finding = kit::Finding();
    finding.command = text("read 1 word at D1");
    finding.frames = text("> 01 02\n< 03 & <04>");
    finding.expected = text("a failure");
    finding.happened = text("success with ") + QChar(7);
    result.verdict.findings.push_back(finding);
    result.verdict.findingCount = 3;
    result.verdict.seconds = 1.5;
    return result;
}

kit::Results allResults()
{
    kit::Result skipped = resultOf(Verdict::Skipped);
    skipped.verdict.skipped = text("no slave");
    kit::Result differing = resultOf(Verdict::Differs);
    differing.verdict.reasons << text("it is so");
    return {resultOf(Verdict::Passed), differing, skipped, failedResult()};
}

} // namespace

TEST(TextReport, APassIsOneLine)
{
    EXPECT_EQ(kit::textReport(resultOf(Verdict::Passed)), text("ok       channel.echo\n"));
}

TEST(TextReport, ReasonsAreTold)
{
    const kit::Results results = allResults();
    EXPECT_EQ(kit::textReport(results[1]), text("differs  channel.echo\n         it is so\n"));
    EXPECT_EQ(kit::textReport(results[2]), text("skipped  channel.echo\n         no slave\n"));
}

TEST(TextReport, AFailureHasWhyCommandFramesAndBothSides)
{
    const QString expected = text("FAILED   channel.echo\n"
                                  "         Lines echo.\n"
                                  "\n"
                                  "         command   read 1 word at D1\n"
                                  "         frames    > 01 02\n"
                                  "                   < 03 & <04>\n"
                                  "         expected  a failure\n"
                                  "         happened  success with \x07\n"
                                  "\n"
                                  "         ... and 2 more\n"
                                  "\n");
    EXPECT_EQ(kit::textReport(failedResult()), expected);
}

TEST(TextReport, TheSummaryCountsAll)
{
    EXPECT_EQ(kit::textSummary(allResults()),
              text("4 checks: 1 passed, 1 differ as declared, 1 skipped, 1 failed\n"));
}

TEST(JunitReport, IsXmlWithACaseForEachCheck)
{
    QXmlStreamReader xml(kit::junitReport(text("libline_driver"), allResults()));
    int cases = 0;
    QStringList outcomes;
    QString failure;
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement())
            continue;
        const QString name = xml.name().toString();
        if (name == text("testsuite")) {
            EXPECT_EQ(xml.attributes().value(text("tests")).toString(), text("4"));
            EXPECT_EQ(xml.attributes().value(text("failures")).toString(), text("1"));
            EXPECT_EQ(xml.attributes().value(text("skipped")).toString(), text("1"));
        } else if (name == text("testcase")) {
            ++cases;
            EXPECT_EQ(xml.attributes().value(text("classname")).toString(), text("libline_driver"));
            EXPECT_EQ(xml.attributes().value(text("name")).toString(), text("channel.echo"));
        } else if (name != text("testsuites")) {
            outcomes << name;
        }
        if (name == text("failure"))
            failure = xml.readElementText();
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    EXPECT_EQ(cases, 4);
    EXPECT_EQ(outcomes, QStringList() << text("system-out") << text("skipped") << text("failure"));
    EXPECT_TRUE(failure.contains(text("< 03 & <04>")));
    EXPECT_TRUE(failure.contains(text("success with ?"))) << "a character that XML has no place for";
}
