#include "tests/driverhost/support/pty_program.h"
#include "tests/driverhost/support/slave_test.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>

// Values by name, on real sockets.

class NamedPointsTest : public SlaveTest
{
protected:
    void SetUp() override
    {
        SlaveTest::SetUp();
        writeTable("name,address,type,scale,offset,unit,low,high,states\n"
                   "temperature,HR1,i16,0.1,,°C,10,80,\n"
                   "pump1.speed,HR2:f32@ABCD,,,,rpm,,,\n"
                   "pump1.state,HR4,,,,,,,0=stopped;1=running\n"
                   "status,HR5,hex,,,,,,0:ready;3:fault\n"
                   "door,DI3,,,,,,,\n");
        setHoldingRegister(0, 235);
        setHoldingRegister(1, 0x4248); // 50.0
        setHoldingRegister(3, 1);
        setHoldingRegister(4, 9);
    }
    void writeTable(const QByteArray &text)
    {
        QFile file(table());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    QString table() const { return folder.filePath("points.csv"); }
    HostRun points(const QStringList &words)
    {
        return runHost(QStringList{words.first(), target(), "--points", table()} + words.mid(1), inUtf8());
    }
    static QProcessEnvironment inUtf8()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("LC_ALL", "C.UTF-8");
        return environment;
    }

    QTemporaryDir folder;
};

TEST_F(NamedPointsTest, AreShownWithUnitStateAndRawValue)
{
    const HostRun run = points({"read"});
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, QString::fromUtf8("name         value         raw     address\n"
                                         "temperature  23.5 °C       235     HR1\n"
                                         "pump1.speed  50 rpm        50      HR2\n"
                                         "pump1.state  running       1       HR4\n"
                                         "status       ready, fault  0x0009  HR5\n"
                                         "door         0             0       DI3\n"));
}

TEST_F(NamedPointsTest, AreMarkedOutsideLowAndHigh)
{
    setHoldingRegister(0, 990);
    EXPECT_TRUE(
        points({"read", "temperature"}).out.endsWith(QString::fromUtf8("99.0 °C  990  HR1      above 80\n")));
    setHoldingRegister(0, 99);
    EXPECT_EQ(points({"read", "temperature", "--format", "csv"}).out.section('\n', 1),
              QString::fromUtf8("temperature,1,HR1,0,i16,9.9,°C,,99,below 10,,\n"));
}

TEST_F(NamedPointsTest, HaveNameValueRawAndUnitForPrograms)
{
    EXPECT_EQ(points({"read", "temperature", "pump1.state", "--format", "csv"}).out,
              QString::fromUtf8("name,station,address,offset,kind,value,unit,state,raw,limit,failure,error\n"
                                "temperature,1,HR1,0,i16,23.5,°C,,235,,,\n"
                                "pump1.state,1,HR4,3,u16,1,,running,1,,,\n"));
    const QString line = points({"read", "temperature", "--format", "json"}).out.section('\n', 0, 0);
    EXPECT_EQ(QJsonDocument::fromJson(line.toUtf8()).object(),
              (QJsonObject{{"name", "temperature"},
                           {"station", 1},
                           {"address", "HR1"},
                           {"offset", 0},
                           {"kind", "i16"},
                           {"value", 23.5},
                           {"text", QString::fromUtf8("23.5 °C")},
                           {"unit", QString::fromUtf8("°C")},
                           {"state", ""},
                           {"raw", 235},
                           {"limit", ""}}));
}

TEST_F(NamedPointsTest, AreTakenByNameAndPatternAndBesideAddresses)
{
    const QStringList lines = points({"read", "pump*", "HR1:u16"}).out.split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 4);
    EXPECT_TRUE(lines.at(1).startsWith("pump1.speed  50 rpm"));
    EXPECT_TRUE(lines.at(2).startsWith("pump1.state  running"));
    EXPECT_TRUE(lines.at(3).startsWith("HR1          235"));
    const HostRun unknown = points({"read", "pump1.spee"});
    EXPECT_EQ(unknown.code, 2);
    EXPECT_TRUE(unknown.err.contains("\"pump1.spee\": no such point in " + table() +
                                     ", and no address; there is pump1.speed, pump1.state"))
        << unknown.err.toStdString();
}

TEST_F(NamedPointsTest, AreWrittenByName)
{
    const HostRun run =
        points({"write", "temperature=21.5", "pump1.state=stopped", "pump1.speed=1200", "--verify"});
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("temperature: verified"));
    EXPECT_EQ(holdingRegister(0), 215);
    EXPECT_EQ(holdingRegister(1), 0x4496);
    EXPECT_EQ(holdingRegister(3), 0);
    EXPECT_EQ(points({"write", "temperature", "22"}).code, 0);
    EXPECT_EQ(holdingRegister(0), 220);
    EXPECT_TRUE(
        points({"write", "temperature=21.54"})
            .err.contains("temperature: value \"21.54\" lies between two steps of 0.1; the nearest is 21.5"));
    EXPECT_EQ(points({"write", "temperature=21.54", "--rounded"}).code, 0);
    EXPECT_TRUE(points({"write", "pump1.state=flying"}).err.contains("or one of stopped, running"));
    EXPECT_TRUE(points({"write", "pump*=1"}).err.contains("\"pump*\" is 2 points; expected one"));
    EXPECT_TRUE(points({"write", "door=1"}).err.contains("DI is an input"));
    EXPECT_EQ(points({"write", "pump1.state=1", "--format", "csv"}).out,
              "name,station,address,offset,kind,value,wanted,result,failure,error\n"
              "pump1.state,1,HR4,3,u16,1,1,written,,\n");
}

TEST_F(NamedPointsTest, AreWatchedByName)
{
    const QStringList lines = points({"watch", "temperature", "status", "--count", "1"}).out.split('\n');
    EXPECT_TRUE(lines.value(0).endsWith(QString::fromUtf8("  temperature  23.5 °C  raw 235")))
        << lines.value(0).toStdString();
    EXPECT_TRUE(lines.value(1).endsWith("  status       ready, fault  raw 0x0009"));
    PtyProgram program({"watch", target(), "--points", table(), "--interval", "0.05"});
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) {
        return screen.text().contains(QString::fromUtf8("temperature")) &&
               screen.text().contains(QString::fromUtf8("23.5 °C"));
    })) << program.screen().text().toStdString();
    EXPECT_TRUE(program.screen().text().contains("name ")) << program.screen().text().toStdString();
    setHoldingRegister(0, 815);
    EXPECT_TRUE(program.waitForScreen([](const Screen &screen) {
        return screen.text().contains(QRegularExpression("temperature.*81\\.5.*above 80"));
    })) << program.screen().text().toStdString();
    setHoldingRegister(3, 0);
    EXPECT_TRUE(
        program.waitForScreen([](const Screen &screen) { return screen.text().contains("stopped"); }));
    program.type("\x03");
    EXPECT_EQ(program.waitForEnd(), 0);
}

TEST_F(NamedPointsTest, ATableThatIsWrongIsReportedLineByLine)
{
    writeTable("name,address\na,HR0\nb,HR1\nb,HR2\n");
    const HostRun run = points({"read"});
    EXPECT_EQ(run.code, 2);
    EXPECT_TRUE(run.err.contains(table() + ":2: column 2 (address): ")) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains(table() + ":4: column 1 (name): ")) << run.err.toStdString();
    EXPECT_EQ(slave.counts().connections, 0u);
}
