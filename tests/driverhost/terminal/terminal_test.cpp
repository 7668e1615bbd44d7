#include "tests/driverhost/support/pty_program.h"
#include "tests/driverhost/support/slave_test.h"

#include <QRegularExpression>
#include <QTemporaryDir>

// What people see on a terminal while the program runs.

namespace
{

bool matches(const QString &text, const char *pattern)
{
    return QRegularExpression(QLatin1String(pattern)).match(text).hasMatch();
}

bool shows(const Screen &screen, const char *text)
{
    return screen.text().contains(QString::fromUtf8(text));
}

} // namespace

class TerminalTest : public SlaveTest
{
protected:
    QStringList words(const QString &arguments) const
    {
        QStringList words = arguments.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        words.replaceInStrings(QStringLiteral("TARGET"), target());
        return words;
    }
    void goSilent() { slave.inject(Fault{Fault::HalfOpen, -1}, 1); }
};

TEST_F(TerminalTest, RowsBeyondTheScreenAreReachedWithKeys)
{
    PtyProgram program(words("watch TARGET HR1 --items 50 --interval 0.05"), 80, 12);
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) { return shows(screen, "rows 1 to "); }))
        << program.output().toStdString();
    EXPECT_TRUE(shows(program.screen(), "HR1 "));
    EXPECT_LE(program.screen().lines().size(), 12);
    for (const QString &line : program.screen().lines())
        EXPECT_LE(line.size(), 80);
    program.type("\x1b[6~");
    ASSERT_TRUE(program.waitForScreen(
        [](const Screen &screen) { return shows(screen, "HR9 ") && !shows(screen, "HR1 "); }));
    program.type("\x1b[F");
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) { return shows(screen, "HR50 "); }));
    program.type("\x1b[A");
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) { return !shows(screen, "HR50 "); }));
    program.type("\x1b[H");
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) { return shows(screen, "HR1 "); }));
    program.type("\x03");
    EXPECT_EQ(program.waitForEnd(), 0);
    EXPECT_TRUE(shows(program.screen(), "HR1 ") && shows(program.screen(), "HR50 "))
        << "all of it stays behind" << program.screen().text().toStdString();
}

TEST_F(TerminalTest, AResizedWindowHoldsNoScraps)
{
    PtyProgram program(words("watch TARGET HR1 HR2 --interval 0.05"), 100, 30);
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) { return shows(screen, "HR2 "); }));
    program.resize(50, 10);
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) {
        const QStringList lines = screen.lines();
        return shows(screen, "HR2 ") &&
               std::all_of(lines.begin(), lines.end(), [](const QString &line) { return line.size() <= 50; });
    })) << program.screen().text().toStdString();
    EXPECT_TRUE(program.output().contains(QLatin1String("\x1b[?1049h"))) << "a screen of its own";
    program.type("\x03");
    EXPECT_EQ(program.waitForEnd(), 0);
    EXPECT_TRUE(program.output().contains(QLatin1String("\x1b[?1049l")));
}

TEST_F(TerminalTest, TheCourseIsExplainedAlsoInAscii)
{
    PtyProgram bars(words("watch TARGET HR1 --interval 0.05"));
    ASSERT_TRUE(bars.waitForScreen([](const Screen &screen) {
        return shows(screen, "course: the last 24 rounds, ▁ lowest to █ highest");
    })) << bars.screen().text().toStdString();
    PtyProgram plain(words("watch TARGET HR1 --interval 0.05"), 100, 30, "C");
    ASSERT_TRUE(plain.waitForScreen([](const Screen &screen) {
        return shows(screen, "course: the last 24 rounds, _ lowest to # highest") &&
               matches(screen.text(), " _+\n");
    })) << plain.screen().text().toStdString();
    EXPECT_FALSE(plain.output().contains(QChar(u'▁'))) << plain.output().toStdString();
}

TEST_F(TerminalTest, ATraceSaysWhatBecomesOfTheTable)
{
    PtyProgram program(words("watch TARGET HR1 --interval 0.05 --count 2 --trace"));
    EXPECT_EQ(program.waitForEnd(), 0);
    EXPECT_TRUE(shows(program.screen(), "--trace: values come as lines"))
        << program.screen().text().toStdString();
    EXPECT_TRUE(matches(program.screen().text(), "\\n\\d{4}-\\d\\d-\\d\\dT[^ ]+  HR1  0\\n"));
}

TEST_F(TerminalTest, ATraceInAFileLeavesTheTable)
{
    QTemporaryDir folder;
    PtyProgram program(words("watch TARGET HR1 --interval 0.05 --trace"), 100, 30, "C.UTF-8",
                       folder.filePath("trace.txt"));
    ASSERT_TRUE(program.waitForScreen(
        [](const Screen &screen) { return shows(screen, "reply ms") && shows(screen, "round 1"); }));
    program.type("\x03");
    EXPECT_EQ(program.waitForEnd(), 0);
    QFile trace(folder.filePath("trace.txt"));
    ASSERT_TRUE(trace.open(QIODevice::ReadOnly));
    EXPECT_TRUE(trace.readAll().contains(" > 01 03 00 00 00 01 84 0A  "));
}

TEST_F(TerminalTest, AWatchShowsItsTableBeforeTheFirstAnswer)
{
    goSilent();
    PtyProgram program(words("watch TARGET HR1 --timeout 600000"));
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) {
        return matches(screen.text(), "\nHR1 +\\?") &&
               matches(screen.text(), "attempt 1 of 4, (\\d+) s left");
    })) << program.screen().text().toStdString();
    program.type("\x03");
    EXPECT_EQ(program.waitForEnd(), 0);
}

TEST_F(TerminalTest, AWatchWaitsForNothingBetweenItsRounds)
{
    PtyProgram program(words("watch TARGET HR1 --interval 600"));
    const QRegularExpression later("round 1  (\\d\\d:\\d\\d:\\d\\d)");
    QString first;
    ASSERT_TRUE(program.waitForScreen([&](const Screen &screen) {
        const QString time = later.match(screen.text()).captured(1);
        first = first.isEmpty() ? time : first;
        return !time.isEmpty() && time != first;
    })) << program.screen().text().toStdString();
    EXPECT_FALSE(matches(program.output(), "attempt \\d of|connecting"))
        << program.screen().text().toStdString();
    EXPECT_TRUE(shows(program.screen(), "course: the last 24 rounds"));
    program.type("\x03");
    EXPECT_EQ(program.waitForEnd(), 0);
}

TEST_F(TerminalTest, ASilentStationKeepsNoValueOfOthersBack)
{
    PtyProgram program(words("watch TARGET HR1 9-HR1 --timeout 600000"));
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) {
        return shows(screen, "round 0") && matches(screen.text(), "\nHR1 +0 +[0-9.]+ ");
    })) << program.screen().text().toStdString();
    program.type("\x03");
    EXPECT_EQ(program.waitForEnd(), 0);
}

TEST_F(TerminalTest, ANarrowWindowCutsNothingOff)
{
    slave.inject(Fault{Fault::Exception, 2}, 4);
    PtyProgram program(words("watch TARGET HR1 --interval 600 --retries 3"), 60, 24);
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) {
        return shows(screen, "HR1: exception code:0x02 (read 1 word(s) from 1-HR1)\n"
                             "  check: illegal data address: the range touches an address\n"
                             "  that the slave does not have; numbers in address texts\n"
                             "  count from 1\n");
    })) << program.screen().text().toStdString();
    EXPECT_TRUE(shows(program.screen(), "errors  co")) << program.screen().text().toStdString();
    EXPECT_TRUE(matches(program.screen().text(), "round 1\\s+\\d\\d:\\d\\d:\\d\\d"))
        << program.screen().text().toStdString();
    program.type("\x03");
    EXPECT_EQ(program.waitForEnd(), 5) << "nothing could be read";
}

TEST_F(TerminalTest, LongWaitsShowWhatIsWaitedForAndHowLongStill)
{
    for (const char *arguments :
         {"read TARGET HR1 --timeout 600000", "write TARGET HR1 1 --timeout 600000"}) {
        goSilent();
        PtyProgram program(words(arguments));
        ASSERT_TRUE(program.waitForScreen([](const Screen &screen) {
            return matches(screen.text(), "HR1: attempt 1 of 4, 2(399|400) s left");
        })) << program.screen().text().toStdString();
        program.type("\x03");
        EXPECT_EQ(program.waitForEnd(), 130);
        EXPECT_FALSE(shows(program.screen(), "attempt 1 of 4")) << "it goes when it is over";
    }
}

TEST_F(TerminalTest, AScanShowsHowFarItIsWhileItWaits)
{
    goSilent();
    PtyProgram program(words("scan TARGET HR --timeout 600000"));
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) {
        return matches(screen.text(), "HR \\[\\.+\\] 0 of 1000  attempt 1 of 1, \\d+ s left");
    })) << program.screen().text().toStdString();
    program.type("\x03");
    EXPECT_EQ(program.waitForEnd(), 130);
}

TEST_F(TerminalTest, TheTableCountsAttemptsAndWhatBecameOfThem)
{
    slave.inject(Fault{Fault::WrongCrc, -1}, 2);
    PtyProgram program(words("watch TARGET HR1 --interval 600 --settle off"));
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) {
        return shows(screen, "1 request, 3 attempts, 2 retries; 2 CRC errors") &&
               matches(screen.text(), "\naddress +value +reply ms +total ms +attempts +errors +course\n"
                                      "HR1 +0 +[0-9.]+ +[0-9.]+ +3 +0 ");
    })) << program.screen().text().toStdString();
    program.type("\x03");
    EXPECT_EQ(program.waitForEnd(), 0);
}

TEST_F(TerminalTest, TheDemonstrationFitsEightyColumns)
{
    const HostRun run = runHost({"demo", "--plugin", pluginFile()});
    for (const QString &line : run.out.split(QLatin1Char('\n')))
        EXPECT_LE(line.size(), 80) << line.toStdString();
}
