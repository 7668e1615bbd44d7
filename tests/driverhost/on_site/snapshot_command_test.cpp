#include "tests/driverhost/support/slave_test.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>

// What a slave holds, as a file, and what differs from it.

namespace
{

SlaveOptions holedStations()
{
    SlaveOptions options;
    options.stations = {1, 2};
    options.memory.addHole({1, Area::HoldingRegisters, 2, 3});
    for (const Area area : {Area::InputRegisters, Area::DiscreteInputs})
        options.memory.setValue(1, area, 1, 1);
    return options;
}

} // namespace

class SnapshotCommandTest : public SlaveTest
{
protected:
    SnapshotCommandTest() : SlaveTest(holedStations()) {}

    QString path(const char *name = "plc.snapshot") const { return folder.filePath(name); }
    QString contents(const QString &file) const
    {
        QFile opened(file);
        return opened.open(QIODevice::ReadOnly) ? QString::fromUtf8(opened.readAll()) : QString();
    }
    void write(const QString &file, const QByteArray &text) const
    {
        QFile opened(file);
        ASSERT_TRUE(opened.open(QIODevice::WriteOnly));
        opened.write(text);
    }
    // FILE among the arguments stands for the snapshot.
    HostRun run(const QString &arguments) { return host(QString(arguments).replace("FILE", path())); }
    HostRun keep(const QString &ranges) { return run("snapshot TARGET " + ranges + " --output FILE"); }

    QTemporaryDir folder;
};

TEST_F(SnapshotCommandTest, KeepsValuesHolesTimeAndStation)
{
    setHoldingRegister(0, 4660);
    slave.setValue(2, Area::Coils, 6, 1);
    const HostRun kept = keep("HR1..5 2-DO7..8 IR1..2 DI2");
    EXPECT_EQ(kept.code, 0) << kept.err.toStdString();
    EXPECT_EQ(kept.out, "");
    EXPECT_TRUE(kept.err.startsWith(path() + ": 8 values kept; the slave lacks 2 of the addresses\n"))
        << kept.err.toStdString();
    QString text = contents(path());
    text.replace(
        QRegularExpression("\ntime \\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}[+-]\\d\\d:\\d\\d\n"),
        "\ntime now\n");
    EXPECT_EQ(text,
              "driverhost snapshot\nformat 1\ntime now\ntarget " + target() +
                  "\nrange 1-HR1..5\nHR1 4660\nHR2 0\nHR3..4 missing\nHR5 0\n"
                  "range 2-DO7..8\nDO7 1\nDO8 0\nrange 1-IR1..2\nIR1 0\nIR2 1\nrange 1-DI2\nDI2 1\nend\n");
}

TEST_F(SnapshotCommandTest, AsksForWhatIsRefusedOnce)
{
    EXPECT_EQ(keep("HR1..5 --retries 3").code, 0);
    EXPECT_LE(slave.counts().exceptions, 5u);
    EXPECT_LE(slave.counts().requests, 9u);
}

TEST_F(SnapshotCommandTest, KeepsNothingWhenTheSlaveDoesNotAnswer)
{
    ASSERT_EQ(keep("HR1").code, 0);
    const QString before = contents(path());
    slave.inject(Fault{Fault::Silence, -1}, 100);
    const HostRun silent = keep("HR1..2 --timeout 50 --retries 0");
    EXPECT_EQ(silent.code, 4);
    EXPECT_TRUE(silent.err.contains("PLC no response")) << silent.err.toStdString();
    EXPECT_TRUE(silent.err.contains(path() + ": nothing is kept\n"));
    EXPECT_EQ(contents(path()), before) << "what was kept stays";
}

TEST_F(SnapshotCommandTest, RefusesWhatItDoesNotUnderstandBeforeAnythingIsSent)
{
    const struct {
        const char *arguments;
        const char *problem;
    } cases[] = {
        {"snapshot TARGET --output FILE", "expected a range such as HR1..200"},
        {"snapshot TARGET HR1", "expected --output FILE"},
        {"snapshot TARGET HR --output FILE", "\"HR\": expected a range such as HR1..200 or 2-DO5"},
        {"snapshot TARGET HR9..1 --output FILE", "\"HR9..1\": expected a range"},
        {"snapshot TARGET HR1..5 HR4 --output FILE", "\"HR4\" overlaps 1-HR1..5"},
        {"snapshot TARGET 0-HR4 --output FILE", "\"0-HR4\": nobody replies to station 0"},
        {"snapshot TARGET HR1 --output /proc", "/proc is a directory"},
        {"compare", "expected the file of a snapshot"},
        {"compare TARGET", "expected the file of a snapshot"},
        {"compare FILE", "there is no such file"},
        {"restore FILE --yes", "there is no such file"},
        {"restore FILE --yes --dry-run", "there is no such file"},
    };
    for (const auto &one : cases) {
        const HostRun refused = run(one.arguments);
        EXPECT_EQ(refused.code, 2) << one.arguments;
        EXPECT_TRUE(refused.err.contains(one.problem)) << one.arguments << refused.err.toStdString();
    }
    write(path(), "name,address\n");
    EXPECT_TRUE(keep("HR1").err.contains(path() + " is no snapshot, and is not written over"));
    EXPECT_EQ(contents(path()), "name,address\n");
    EXPECT_EQ(slave.counts().requests, 0u);
}

TEST_F(SnapshotCommandTest, SaysWhereAFileIsDamaged)
{
    ASSERT_EQ(keep("HR1..2 HR5..40").code, 0);
    const QStringList lines = contents(path()).split('\n');
    for (const char *command : {"compare FILE", "restore FILE --yes"}) {
        const quint64 before = slave.counts().requests;
        for (int kept = 0; kept < lines.size() - 1; ++kept) {
            write(path(), QStringList(lines.mid(0, kept)).join('\n').toUtf8());
            const HostRun damaged = run(command);
            EXPECT_EQ(damaged.code, 2);
            EXPECT_TRUE(damaged.err.contains(
                QStringLiteral("%1:%2: the file ends here; expected ").arg(path()).arg(kept + 1)))
                << kept << damaged.err.toStdString();
        }
        write(path(), QString(lines.join('\n')).replace("HR2 0", "HR2 O").toUtf8());
        EXPECT_TRUE(
            run(command).err.contains(path() + ":7: value \"O\": expected a whole number from 0 to 65535"));
        EXPECT_EQ(slave.counts().requests, before) << "nothing is sent for it";
    }
}

TEST_F(SnapshotCommandTest, CompareSaysWhatDiffersAndExitsWithIt)
{
    ASSERT_EQ(keep("HR1..5 2-DO7..8 IR1..2").code, 0);
    const HostRun same = run("compare FILE");
    EXPECT_EQ(same.code, 0) << same.err.toStdString();
    EXPECT_EQ(same.out, "");
    EXPECT_TRUE(same.err.startsWith("0 of 9 values differ from " + path() + ", of 20"))
        << same.err.toStdString();

    setHoldingRegister(4, 18);
    slave.setValue(2, Area::Coils, 7, 1);
    slave.setValue(1, Area::InputRegisters, 0, 3);
    const HostRun differs = run("compare FILE");
    EXPECT_EQ(differs.code, 10);
    EXPECT_EQ(differs.out, "1-HR5: was 0, is 18\n2-DO8: was 0, is 1\n1-IR1: was 0, is 3\n");
    EXPECT_TRUE(differs.err.startsWith("3 of 9 values differ from "));
    EXPECT_EQ(run("compare FILE --format csv").out,
              "station,address,offset,kept,now\n1,HR5,4,0,18\n2,DO8,7,0,1\n1,IR1,0,0,3\n");
    const QStringList json = run("compare FILE --format json").out.split('\n');
    ASSERT_EQ(json.size(), 5);
    EXPECT_EQ(
        QJsonDocument::fromJson(json.at(3).toUtf8()).object().value("summary").toObject().value("different"),
        3);
}

TEST_F(SnapshotCommandTest, CompareNoticesAddressesThatHaveComeOrGone)
{
    write(path(), "driverhost snapshot\nformat 1\ntime t\ntarget " + target().toUtf8() +
                      "\nrange 1-HR1..4\nHR1 0\nHR2 missing\nHR3 7\nHR4 missing\nend\n");
    const HostRun differs = run("compare FILE");
    EXPECT_EQ(differs.code, 10);
    EXPECT_EQ(differs.out, "1-HR2: was missing, is 0\n1-HR3: was 7, is missing\n");
    EXPECT_EQ(run("compare FILE --format csv").out,
              "station,address,offset,kept,now\n1,HR2,1,,0\n1,HR3,2,7,\n");
}

TEST_F(SnapshotCommandTest, AnotherTargetMeansItsOwnStation)
{
    ASSERT_EQ(keep("HR1..2").code, 0);
    slave.setValue(2, Area::HoldingRegisters, 1, 9);
    EXPECT_EQ(run("compare FILE").code, 0);
    const HostRun other = run("compare FILE " + target(2));
    EXPECT_EQ(other.code, 10);
    EXPECT_EQ(other.out, "2-HR2: was 0, is 9\n");
    EXPECT_EQ(run("compare FILE --station 2").out, other.out);
    EXPECT_TRUE(run("compare FILE --trace").err.contains("target " + target() + ": by " + path()));
    EXPECT_EQ(run("compare FILE TARGET TARGET").code, 2);
    EXPECT_EQ(run("compare FILE FILE").code, 2);
}

TEST_F(SnapshotCommandTest, TheFilesTargetBeatsTheEnvironments)
{
    ASSERT_EQ(keep("HR1..2").code, 0);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DRIVERHOST_TARGET", target(2));
    slave.setValue(2, Area::HoldingRegisters, 1, 9);
    EXPECT_EQ(runHost({"compare", path()}, environment).code, 0);
    EXPECT_EQ(runHost({"snapshot", "HR1..2", "--output", path("other")}, environment).code, 0);
    EXPECT_TRUE(contents(path("other")).contains("target " + target(2) + "\nrange 2-HR1..2\nHR1 0\nHR2 9\n"));
}
