#include "kit/program/options.h"
#include "tests/support/gtest_qt.h"

#include <gtest/gtest.h>

// The command line of driver-conformance.

namespace
{

QStringList words(const char *line)
{
    QStringList words = QString::fromLatin1(line).split(QLatin1Char(' '));
    words.removeAll(QString());
    return words;
}

kit::Options parsed(const char *line)
{
    QString error;
    const kit::Options options = kit::parsedOptions(words(line), error);
    EXPECT_EQ(error, QString()) << line;
    return options;
}

} // namespace

TEST(ConformanceOptions, Defaults)
{
    const kit::Options options = parsed("libdriver.so");
    EXPECT_EQ(options.plugin, QString(QLatin1String("libdriver.so")));
    EXPECT_EQ(options.commands, 1000000);
    EXPECT_EQ(options.timeout, 600);
    EXPECT_TRUE(options.only.isEmpty());
    EXPECT_TRUE(options.transcript.isEmpty());
    EXPECT_FALSE(options.isHere || options.isList || options.isHelp);
}

TEST(ConformanceOptions, AllOfThem)
{
    const kit::Options options = parsed(
        "--transcript t --junit j --project p --only a.* --only b --commands 5 lib.so --timeout 7 --here");
    EXPECT_EQ(options.transcript, QString(QLatin1String("t")));
    EXPECT_EQ(options.junit, QString(QLatin1String("j")));
    EXPECT_EQ(options.project, QString(QLatin1String("p")));
    EXPECT_EQ(options.only, words("a.* b"));
    EXPECT_EQ(options.commands, 5);
    EXPECT_EQ(options.timeout, 7);
    EXPECT_TRUE(options.isHere);
    EXPECT_EQ(options.plugin, QString(QLatin1String("lib.so")));
}

TEST(ConformanceOptions, HelpAndListNeedNoPlugin)
{
    EXPECT_TRUE(parsed("--help").isHelp);
    EXPECT_TRUE(parsed("-h").isHelp);
    EXPECT_TRUE(parsed("--list").isList);
}

TEST(ConformanceOptions, Mistakes)
{
    const struct {
        const char *line;
        const char *error;
    } rows[] = {
        {"", "no plug-in"},
        {"--here", "no plug-in"},
        {"a.so b.so", "one plug-in is there already, what is b.so?"},
        {"--fast a.so", "unknown option --fast"},
        {"a.so --junit", "--junit needs a value"},
        {"a.so --commands many", "--commands needs a number above 0"},
        {"a.so --timeout 0", "--timeout needs a number above 0"},
    };
    for (const auto &row : rows) {
        QString error;
        kit::parsedOptions(words(row.line), error);
        EXPECT_EQ(error, QString(QLatin1String(row.error))) << row.line;
    }
}
