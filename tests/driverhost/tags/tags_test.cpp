#include "tests/driverhost/support/slave_test.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

namespace
{

// In every area, around the holes.
const char AllTags[] = "tag 1 HR1\ntag 1 HR2\ntag 1 HR4.3\ntag 1 HRSW30\ntag 1 DO1\ntag 1 DO2\ntag 1 FN5DO4\n"
                       "tag 1 5-DI9\ntag 1 DI65536\n";
// What brings them once the holes are known: HR1..4, HR30..31; DO1..2 and DO4; a discrete input each of two
// stations.
const quint64 FewestRequests = 6;

} // namespace

class TagsTest : public SlaveTest
{
protected:
    TagsTest() : SlaveTest(withHoles()) {}

    QString file(const char *name) const { return folder.filePath(QLatin1String(name)); }
    // A project of this slave with the tags, one a line.
    QString makeProject(const QString &tags)
    {
        QFile list(file("list"));
        EXPECT_TRUE(list.open(QIODevice::WriteOnly));
        list.write(QStringLiteral("link 1 ETHERNET\nnode 1 1 default 127.0.0.1:%1\n%2")
                       .arg(QString::number(slave.port()), tags)
                       .toUtf8());
        list.close();
        EXPECT_EQ(host(QStringLiteral("project --make %1 %2").arg(file("list"), file("project"))).code, 0);
        return file("project");
    }
    // How many requests the slave gets from driverhost, and how many it refuses.
    std::pair<quint64, quint64> requestsOf(const QString &arguments)
    {
        const SlaveCounts before = slave.counts();
        host(arguments);
        const SlaveCounts after = slave.counts();
        return {after.requests - before.requests, after.exceptions - before.exceptions};
    }

    QTemporaryDir folder;
};

TEST_F(TagsTest, ReadsTheWholeLinkByFewRequests)
{
    setHoldingRegister(0, 11);
    setHoldingRegister(1, 22);
    setHoldingRegister(3, 0x0008);
    setHoldingRegister(29, 1);
    slave.setValue(1, Area::Coils, 3, 1);
    slave.setValue(5, Area::DiscreteInputs, 8, 1);
    slave.setValue(1, Area::DiscreteInputs, 65535, 1);
    const HostRun run =
        host(QStringLiteral("tags --format csv --project ") + makeProject(QLatin1String(AllTags)));
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    for (const char *line : {"1,HR1,0,word,11,,", "1,HR2,1,word,22,,", "1,HR4.3,3,bit,1,,",
                             "1,HRSW30,29,dword,65536,,", "1,DO1,0,bit,0,,", "1,DO2,1,bit,0,,",
                             "1,FN5DO4,3,bit,1,,", "5,5-DI9,8,bit,1,,", "1,DI65536,65535,bit,1,,"})
        EXPECT_TRUE(run.out.split(QLatin1Char('\n')).contains(QLatin1String(line))) << line << '\n'
                                                                                    << run.out.toStdString();
    // Two more are refused: DO1..4, and then the step from DO2 to DO4.
    EXPECT_EQ(slave.counts().requests, FewestRequests + 2);
}

TEST_F(TagsTest, ReadsOneByOneWhatTheSlaveRefusesTogether)
{
    setHoldingRegister(9, 5);
    const QString project = makeProject(QStringLiteral("tag 1 HR10\ntag 1 HR11\n"));
    const HostRun run = host(QStringLiteral("tags --retries 0 --format csv --project ") + project);
    EXPECT_EQ(run.code, 5);
    EXPECT_TRUE(run.out.contains(QLatin1String("1,HR10,9,word,5,,\n")));
    EXPECT_TRUE(run.err.contains(QLatin1String("HR11: exception code:0x02"))) << run.err.toStdString();
    const HostRun watch =
        host(QStringLiteral("tags --retries 0 --watch --count 1 --interval 0 --project ") + project);
    EXPECT_TRUE(watch.out.contains(QLatin1String("HR10  5"))) << watch.out.toStdString();
}

TEST_F(TagsTest, NeedsAProjectWithTheLink)
{
    EXPECT_EQ(host(QStringLiteral("tags")).code, 2);
    EXPECT_EQ(host(QStringLiteral("tags --project ") + file("none")).code, 6);
    const QString project = makeProject(QStringLiteral("tag 1 HR1\n"));
    EXPECT_EQ(host(QStringLiteral("tags --device COM1 --project ") + project).code, 6);
    EXPECT_EQ(slave.counts().connections, 0u);
}

TEST_F(TagsTest, KeepsWhatItHasLearnt)
{
    const QString tags = QStringLiteral("tags --project %1 --learnt %2")
                             .arg(makeProject(QLatin1String(AllTags)), file("learnt"));
    const auto first = requestsOf(tags);
    EXPECT_EQ(first.first, FewestRequests + 2);
    EXPECT_EQ(first.second, 2u);
    EXPECT_EQ(requestsOf(tags), std::make_pair(FewestRequests, quint64(0)));
    EXPECT_GT(requestsOf(tags + QStringLiteral(" --ask-again")).second, 0u);

    QFile learnt(file("learnt"));
    ASSERT_TRUE(learnt.open(QIODevice::ReadOnly));
    const QByteArray text = learnt.readAll();
    EXPECT_TRUE(text.startsWith("driverhost learnt\nformat 1\n")) << text.constData();
    EXPECT_TRUE(text.contains("refused-step 1-DO2..4 exception 2 ")) << text.constData();
    learnt.close();
    ASSERT_TRUE(learnt.open(QIODevice::WriteOnly));
    learnt.write("driverhost learnt\nformat 1\nnonsense\n");
    learnt.close();
    const HostRun spoilt = host(tags);
    EXPECT_EQ(spoilt.code, 1);
    EXPECT_TRUE(spoilt.err.contains(file("learnt") + QLatin1String(":3: \"nonsense\"")))
        << spoilt.err.toStdString();
}

TEST_F(TagsTest, LearnsWhileItWatches)
{
    const QString rounds = QStringLiteral("tags --watch --interval 0 --project %1 --count ")
                               .arg(makeProject(QLatin1String(AllTags) + QStringLiteral("tag 1 HR11\n")));
    const QString watch = rounds + QStringLiteral("10");
    const auto requests = requestsOf(watch);
    const auto more = requestsOf(rounds + QStringLiteral("20"));
    EXPECT_EQ(more.first, requests.first + 10 * FewestRequests);
    EXPECT_EQ(more.second, requests.second) << "what was refused is not asked for again";
    const HostRun text = host(watch);
    EXPECT_EQ(text.err.count(QLatin1String("HR11: exception code:0x02")), 1) << text.err.toStdString();
    const HostRun json = host(watch + QStringLiteral(" --format json"));
    EXPECT_EQ(json.out.count(QLatin1String("\"address\":\"HR11\"")), 10);
    EXPECT_EQ(json.out.count(QLatin1String("not asked again until")), 9);
}

TEST_F(TagsTest, ReadsNothingBetweenTagsWhereItMustNot)
{
    const QString tags =
        QStringLiteral("tags --project ") + makeProject(QStringLiteral("tag 1 HR1\ntag 1 HR2\ntag 1 HR4\n"));
    EXPECT_EQ(requestsOf(tags).first, 1u);
    EXPECT_EQ(requestsOf(tags + QStringLiteral(" --no-fill")).first, 2u);
    EXPECT_EQ(requestsOf(tags + QStringLiteral(" --one-by-one")).first, 3u);
}

TEST_F(TagsTest, ShowsItsPlanWithoutSendingAnything)
{
    const QString tags =
        QStringLiteral("tags --plan --learnt %2 --project %1")
            .arg(makeProject(QStringLiteral("tag 1 HR1\ntag 1 HR4\ntag 1 HR60\n")), file("learnt"));
    const auto requests = requestsOf(tags);
    EXPECT_EQ(requests.first, 0u);
    EXPECT_FALSE(QFile::exists(file("learnt")));
    const HostRun text = host(tags);
    EXPECT_EQ(text.code, 0);
    EXPECT_EQ(
        text.out.split(QLatin1Char('\n')).first(),
        QStringLiteral("station 1: 52.9 ms a request, 2.3 ms a register, at most 125 at once; assumed"));
    EXPECT_TRUE(text.out.contains(QLatin1String("1-HR1..4")));
    EXPECT_TRUE(text.out.contains(
        QLatin1String("fills 2 registers in 1 gap; the gap of 55 registers costs more than a request")))
        << text.out.toStdString();
    EXPECT_TRUE(text.out.endsWith(QLatin1String("\n2 requests, 117.3 ms a round\n")))
        << text.out.toStdString();

    const QJsonObject request =
        QJsonDocument::fromJson(
            host(tags + QStringLiteral(" --format json")).out.section(QLatin1Char('\n'), 0, 0).toUtf8())
            .object();
    EXPECT_EQ(request.value(QStringLiteral("address")), QStringLiteral("1-HR1..4"));
    EXPECT_EQ(request.value(QStringLiteral("values")), 2);
    EXPECT_EQ(request.value(QStringLiteral("filled")), 2);
}

TEST_F(TagsTest, ShowsRegistersByTheTypesOfTheList)
{
    setHoldingRegister(0, 0x4248);
    setHoldingRegister(2, 0xFFFE);
    const QString project = makeProject("tag 1 HR1:f32@ABCD\ntag 1 HR3:i16\ntag 1 DO1:bit\n");
    const QString rows = host("tags --format csv --project " + project).out;
    EXPECT_TRUE(rows.contains(",HR1,0,f32,50,")) << rows.toStdString();
    EXPECT_TRUE(rows.contains(",HR3,2,i16,-2,")) << rows.toStdString();
    EXPECT_EQ(host("project " + project).out.section('\n', 2),
              "tag 1 HR1:f32@ABCD\ntag 1 HR3:i16\ntag 1 DO1\n");
    QFile list(file("bad"));
    for (const char *tag : {"HR1:f99", "HR1:u16x4", "DO1:u8", "HR1:f32@ACBD", "XX1:u16"}) {
        ASSERT_TRUE(list.open(QIODevice::WriteOnly));
        list.write(QByteArray("link 1 ETHERNET\nnode 1 1 default\ntag 1 ") + tag + '\n');
        list.close();
        const HostRun bad = host(QStringLiteral("project --make %1 %2").arg(file("bad"), file("no.db")));
        EXPECT_EQ(bad.code, 2) << tag;
        EXPECT_TRUE(bad.err.contains("line 3: ")) << bad.err.toStdString();
    }
}
