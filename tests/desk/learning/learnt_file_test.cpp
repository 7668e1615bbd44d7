#include "desk/learning/learnt_file.h"

#include "tests/desk/support/full_disk.h"
#include "tests/peers/text_printing.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace
{

const char Whole[] = "driverhost learnt\n"
                     "format 1\n"
                     "station 1 no-fill\n"
                     "station 1 registers cost 52916.7 2291.7\n"
                     "station 1 registers limit 100 102\n"
                     "refused-function 1-DI1 exception 1 again 2026-05-01T10:00:00Z pause 3600\n"
                     "refused-step 1-HR49..51 exception 3 again 2026-05-01T10:00:00Z pause 60\n"
                     "refused 1-HR101..102 exception 2 again 2026-05-01T10:02:00Z pause 120\n"
                     "station 7 one-by-one\n"
                     "station 7 bits cost 1000.0 0.0\n"
                     "station 7 bits limit 0 5\n";

QString withLine(const char *line)
{
    return QStringLiteral("driverhost learnt\nformat 1\n") + QLatin1String(line);
}

QString problemWith(const QString &text)
{
    return parseLearnt(text).errorText();
}

} // namespace

TEST(LearntFile, IsWrittenAsItWasRead)
{
    Result<Learnt> learnt = parseLearnt(QLatin1String(Whole));
    ASSERT_TRUE(learnt) << learnt.errorText().toStdString();
    EXPECT_EQ(textOf(*learnt), QLatin1String(Whole));
}

TEST(LearntFile, SaysWhatWasLearnt)
{
    Result<Learnt> learnt = parseLearnt(QStringLiteral("# a plant\n\n") + QLatin1String(Whole));
    ASSERT_TRUE(learnt);
    StationFacts &first = (*learnt)[1];
    EXPECT_FALSE(first.options.fillsGaps);
    EXPECT_NEAR(first.requests(Area::InputRegisters).cost.cost().perUnit, 2291.7, 1e-9);
    EXPECT_EQ(first.requests(Area::InputRegisters).limit.attempt(), 101);
    EXPECT_NE(first.refusals(Area::HoldingRegisters).wanted({100, 101}), nullptr);
    EXPECT_TRUE(first.refusals(Area::HoldingRegisters).isBarred({48, 50}));
    EXPECT_FALSE(first.refusals(Area::HoldingRegisters).isBarred({49, 60}));
    EXPECT_NE(first.refusals(Area::DiscreteInputs).wanted({400, 400}), nullptr);
    EXPECT_TRUE((*learnt)[7].options.isOneByOne);
}

TEST(LearntFile, TakesLinesInAnyOrder)
{
    const QString fifth = QStringLiteral("refused 1-HR5 exception 2 again 2026-05-01T10:00:00Z pause 60\n");
    const QString first = QStringLiteral("refused 1-HR1 exception 2 again 2026-05-01T10:00:00Z pause 60\n");
    Result<Learnt> learnt = parseLearnt(withLine("") + fifth + first);
    ASSERT_TRUE(learnt);
    EXPECT_EQ(textOf(*learnt), withLine("") + first + fifth);
}

TEST(LearntFile, LeavesOutWhatIsNotKnown)
{
    Learnt learnt;
    StationFacts &facts = learnt[3];
    facts.requests(Area::HoldingRegisters).cost.add(1, 50000);
    facts.requests(Area::HoldingRegisters).limit.addGiven(50);
    facts.refusals(Area::Coils).addLost({4, 4}, 0);
    EXPECT_EQ(textOf(learnt), QStringLiteral("driverhost learnt\nformat 1\n"));
    for (int i = 0; i < 2; ++i)
        facts.refusals(Area::Coils).addLost({4, 4}, 0);
    EXPECT_EQ(textOf(learnt), withLine("refused 3-DO5 exception 0 again 1970-01-01T00:00:16Z pause 16\n"));
}

TEST(LearntFile, TakesTheFirstOfRefusalsThatAreAlike)
{
    const QString first = withLine("refused 1-HR1..2 exception 2 again 2026-05-01T10:00:00Z pause 60\n");
    Result<Learnt> learnt = parseLearnt(
        first + QStringLiteral("refused 1-HR1..2 exception 3 again 2026-06-01T10:00:00Z pause 120\n"));
    ASSERT_TRUE(learnt);
    EXPECT_EQ(textOf(*learnt), first);
}

TEST(LearntFile, NamesTheLineThatIsWrong)
{
    for (const char *line : {"station 256 no-fill",
                             "station 1",
                             "station 1 slow",
                             "station 1 registers cost 0 1",
                             "station 1 registers cost x 1",
                             "station 1 registers cost 3600000001 1",
                             "station 1 registers cost 1 -1",
                             "station 1 registers cost 1 3600000001",
                             "station 1 registers cost 1",
                             "station 1 registers speed 1 2",
                             "station 1 registers limit x 5",
                             "station 1 registers limit 100 100",
                             "station 1 registers limit 1 127",
                             "station 1 bits limit 0 2002",
                             "station 1 words limit 1 2",
                             "refused",
                             "refused HR1 exception 2 again 2026-05-01T10:00:00Z pause 60",
                             "refused 1-HR1 exception 256 again 2026-05-01T10:00:00Z pause 60",
                             "refused 1-HR1 exception 2 again tomorrow pause 60",
                             "refused 1-HR1 exception 2 again 2026-05-01T10:00:00Z pause 0",
                             "refused XX1 exception 2 again 2026-05-01T10:00:00Z pause 60",
                             "refused 1-HR1 reason 2 again 2026-05-01T10:00:00Z pause 60",
                             "refused 1-HR1 exception 2 until 2026-05-01T10:00:00Z pause 60",
                             "refused 1-HR1 exception 2 again 2026-05-01T10:00:00Z after 60",
                             "refused 1-HR1 exception 2 again 2026-05-01T10:00:00Z",
                             "granted 1-HR1"}) {
        const QString problem = problemWith(withLine(line));
        EXPECT_TRUE(problem.startsWith(QLatin1String("3: "))) << line << ": " << problem.toStdString();
    }
    EXPECT_TRUE(problemWith(QString()).contains(QLatin1String("expected")));
    EXPECT_TRUE(problemWith(QStringLiteral("something else")).startsWith(QLatin1String("1: ")));
    EXPECT_TRUE(
        problemWith(QStringLiteral("driverhost learnt\nformat 2\n")).startsWith(QLatin1String("2: ")));
}

TEST(LearntFile, NeedNotBeThereYet)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("learnt"));
    Result<Learnt> learnt = readLearntFile(path);
    ASSERT_TRUE(learnt);
    EXPECT_TRUE(learnt->empty());
    (*learnt)[2].options.isOneByOne = true;
    ASSERT_TRUE(writeLearntFile(path, *learnt));
    learnt = readLearntFile(path);
    ASSERT_TRUE(learnt);
    EXPECT_TRUE((*learnt)[2].options.isOneByOne);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 1);
    EXPECT_FALSE(writeLearntFile(folder.filePath(QStringLiteral("none/learnt")), *learnt));
    EXPECT_FALSE(readLearntFile(folder.path()));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("something else");
    file.close();
    EXPECT_TRUE(readLearntFile(path).errorText().startsWith(path + QStringLiteral(":1: ")));
}

TEST(LearntFile, IsWrittenWholeOrNotAtAll)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("learnt"));
    Result<Learnt> learnt = parseLearnt(QLatin1String(Whole));
    ASSERT_TRUE(writeLearntFile(path, *learnt));
    for (const int refusals : {1, 400}) { // within what is written at once, and beyond
        for (int i = 0; i < refusals; ++i)
            (*learnt)[9].refusals(Area::Coils).addWanted({i, i}, 2, 0);
        const FullDisk disk(100);
        EXPECT_TRUE(writeLearntFile(path, *learnt).errorText().startsWith(path + QStringLiteral(": ")));
        Result<Learnt> former = readLearntFile(path);
        ASSERT_TRUE(former);
        EXPECT_EQ(textOf(*former), QLatin1String(Whole));
        EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 1);
    }
}
