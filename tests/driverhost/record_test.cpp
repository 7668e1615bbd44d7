#include "apps/driverhost/console/exit_code.h"
#include "desk/project/project_file.h"
#include "tests/driverhost/support/slave_test.h"

#include <QFile>
#include <QTemporaryDir>

// What driverhost records, driver-conformance plays back.

namespace
{

QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A link that the driver finds for ETHERNET.
Project smallProject()
{
    Project project;
    project.links = {{1, 2000}};
    project.nodes = {{1, 1, true, QStringLiteral("127.0.0.1"), 502}};
    return project;
}

} // namespace

class RecordTest : public SlaveTest
{
protected:
    QString file(const char *name) const { return folder.filePath(QLatin1String(name)); }

    HostRun record(const QString &arguments, const char *name)
    {
        return host(arguments + QStringLiteral(" --record ") + file(name));
    }

    QTemporaryDir folder;
};

TEST_F(RecordTest, KeepsRequestsRepliesAndValues)
{
    setHoldingRegister(99, 0x1234);
    EXPECT_EQ(record(QStringLiteral("read TARGET HR100 --count 2"), "read").code, 0);
    EXPECT_EQ(contentsOf(file("read")), QByteArray("device ETHERNET\n"
                                                   "retries 3\n"
                                                   "station 1\n"
                                                   "\n"
                                                   "read word 2 HR100\n"
                                                   "> 01 03 00 63 00 02 34 15\n"
                                                   "< 01 03 04 12 34 00 00 BE 85\n"
                                                   "= 34 12 00 00\n"));
}

TEST_F(RecordTest, KeepsWhatIsWrittenAndWhatFails)
{
    EXPECT_EQ(record(QStringLiteral("write TARGET HR1 258"), "write").code, 0);
    EXPECT_TRUE(
        contentsOf(file("write")).contains("\nwrite word 1 HR1\ndata 02 01\n> 01 10 00 00 00 01 02 01 02 "))
        << contentsOf(file("write")).constData();
    EXPECT_TRUE(contentsOf(file("write")).contains("\ndone\n"));
    const QString silent = QStringLiteral("read %1 HR1 --retries 1 --timeout 60").arg(target(9));
    EXPECT_EQ(record(silent, "silent").code, NoReply);
    EXPECT_TRUE(contentsOf(file("silent"))
                    .endsWith("\nread word 1 HR1\n"
                              "> 09 03 00 00 00 01 85 42\n"
                              "> 09 03 00 00 00 01 85 42\n"
                              "failed PLC no response (read 1 word(s) from 9-HR1)\n"))
        << contentsOf(file("silent")).constData();
}

TEST_F(RecordTest, LeavesOutWhatNeverReachedTheSlave)
{
    const QString nobody = QStringLiteral("read rtutcp://127.0.0.1:1/1 HR1 --retries 0");
    EXPECT_EQ(record(nobody, "nothing").code, CannotConnect);
    EXPECT_EQ(contentsOf(file("nothing")), QByteArray("device ETHERNET\nretries 0\n"));
}

TEST_F(RecordTest, SaysWhyTheFileCannotBeMade)
{
    const HostRun run = record(QStringLiteral("read TARGET HR1"), "no/such/folder");
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.err.contains(QStringLiteral("--record ") + file("no/such/folder")))
        << run.err.toStdString();
    EXPECT_EQ(run.out, QString());
}

TEST_F(RecordTest, IsPlayedBackToTheDriver)
{
    EXPECT_EQ(record(QStringLiteral("read TARGET HR100 --count 2"), "read").code, 0);
    EXPECT_EQ(record(QStringLiteral("write TARGET HR1 258"), "write").code, 0);
    QFile both(file("both"));
    ASSERT_TRUE(both.open(QIODevice::WriteOnly));
    both.write(contentsOf(file("read")) + contentsOf(file("write")) +
               "difference refusals.addresses any text is read as far as it fits\n");
    both.close();
    ASSERT_TRUE(writeProjectFile(file("project"), smallProject()));

    QProcess conformance;
    conformance.start(QStringLiteral(CONFORMANCE_PROGRAM),
                      {QStringLiteral("--commands"), QStringLiteral("2000"), QStringLiteral("--project"),
                       file("project"), QStringLiteral("--transcript"), file("both"), pluginFile()});
    ASSERT_TRUE(conformance.waitForFinished(60000));
    const QByteArray report = conformance.readAllStandardOutput();
    EXPECT_EQ(conformance.exitCode(), 0) << report.constData();
    EXPECT_TRUE(report.contains("\nok       transcripts.bytes\n")) << report.constData();
}
