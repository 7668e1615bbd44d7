#include "desk/slave/slave_thread.h"
#include "tests/driverhost/support/doctor_process.h"
#include "tests/driverhost/support/slave_test.h"
#include "tests/plants/plant_server.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

// The options of the command and its forms of output.

namespace
{

class Doctor : public SlaveTest
{
protected:
    HostRun doctor(const QStringList &more)
    {
        return runHost(QStringList{"doctor", target(), "--listen", "0.2"} + more);
    }
    QString fileWith(const QByteArray &content)
    {
        QFile file(folder.filePath(QStringLiteral("file.csv")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        return file.fileName();
    }

    QTemporaryDir folder;
};

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

TEST_F(Doctor, SaysHealthy)
{
    const HostRun run = doctor({});
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_TRUE(run.out.startsWith(QStringLiteral("Healthy: station 1"))) << run.out.toStdString();
    EXPECT_EQ(run.err, QString());
}

TEST_F(Doctor, WritesNothingUnlessItIsTold)
{
    setHoldingRegister(0, 4711);
    HostRun run = doctor({});
    EXPECT_TRUE(run.out.simplified().contains(QStringLiteral("were not tried (--probe-writes)")))
        << run.out.toStdString();
    run = doctor({"--probe-writes"});
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(
        run.err.contains(QStringLiteral("writes back what was read: station 1, write multiple registers")))
        << run.err.toStdString();
    for (const char *function : {"5", "6", "15", "16"}) {
        const QString known = QStringLiteral("unction %1 is known").arg(QLatin1String(function));
        EXPECT_TRUE(run.out.simplified().contains(known)) << function << run.out.toStdString();
    }
    EXPECT_EQ(holdingRegister(0), 4711);
}

TEST_F(Doctor, TakesPointsWithLimits)
{
    setHoldingRegister(10, 500);
    setHoldingRegister(12, 600);
    const QString inPlace = fileWith("name,address,low,high\na,HR11,490,510\nb,HR13,590,610\n");
    EXPECT_EQ(doctor({"--points", inPlace}).code, 0);
    EXPECT_EQ(doctor({"--points", inPlace, "a=500"}).code, 0);
    const QString offByOne = fileWith("name,address,low,high\na,HR10,490,510\nb,HR12,590,610\n");
    const DoctorReport report(doctor({"--points", offByOne, "--format", "json"}));
    EXPECT_EQ(report.code, 8);
    EXPECT_EQ(report.findings, QStringList{"off-by-one"});
    EXPECT_TRUE(report.command().contains("HR11") && report.command().contains("HR13"))
        << report.command().join(' ').toStdString();
}

TEST_F(Doctor, WritesReports)
{
    const QString page = folder.filePath(QStringLiteral("report.html"));
    HostRun run = doctor({"HR1=5", "--report", page});
    EXPECT_EQ(run.code, 9);
    const QByteArray html = contentOf(page);
    EXPECT_TRUE(html.startsWith("<!DOCTYPE html>"));
    EXPECT_TRUE(html.contains("<h2>other-values</h2>")) << html.toStdString();
    EXPECT_TRUE(html.contains("HR1 is 0, expected 5"));
    for (const char *link : {"href", "src=", "http:", "https:", "url("})
        EXPECT_FALSE(html.contains(link)) << link;
    const QString text = folder.filePath(QStringLiteral("report.txt"));
    run = doctor({"--report", text});
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(contentOf(text).startsWith("Healthy: station 1"));
    run = doctor({"--report", folder.filePath(QStringLiteral("no/such/folder.txt"))});
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.err.contains(QStringLiteral("cannot write")));
}

TEST_F(Doctor, HasARowForEachFinding)
{
    const HostRun run = doctor({"HR1=5", "--format", "csv"});
    const QStringList rows = run.out.split(QLatin1Char('\n'));
    EXPECT_EQ(rows.value(0), QStringLiteral("finding,weight,sentence,change"));
    EXPECT_TRUE(rows.value(1).startsWith(QStringLiteral("other-values,open,")))
        << rows.value(1).toStdString();
}

TEST_F(Doctor, TracesWhatItSends)
{
    const HostRun run = doctor({"--trace"});
    EXPECT_TRUE(
        run.err.contains(QStringLiteral("> 01 03 00 00 00 01 84 0A  station 1, read holding registers")))
        << run.err.toStdString();
}

TEST_F(Doctor, RefusesWhatMakesNoSense)
{
    EXPECT_EQ(doctor({"HR100="}).code, 2);
    EXPECT_EQ(doctor({"HR100=warm"}).code, 2);
    EXPECT_EQ(doctor({"HR100..110=5"}).code, 2);
    EXPECT_EQ(doctor({"2-HR100=5"}).code, 2);
    EXPECT_EQ(doctor({"XR1"}).code, 2);
    EXPECT_EQ(doctor({"--listen", "-1"}).code, 2);
    EXPECT_EQ(runHost({"doctor", "rtutcp://127.0.0.1:1/0"}).code, 2);
}

TEST(DoctorWithoutSlave, NamesWhoIsNotThere)
{
    const DoctorReport unknown(runHost({"doctor", "rtutcp://plant.invalid:502/1", "--format", "json"}));
    EXPECT_EQ(unknown.code, 8);
    EXPECT_EQ(unknown.findings, QStringList{"unknown-host"});
    PlantOptions options;
    options.port = PlantOptions::Port::Refuses;
    const PlantServer nobody(options);
    const QString target = QStringLiteral("rtutcp://127.0.0.1:%1/1").arg(nobody.port());
    const DoctorReport refused(runHost({"doctor", target, "--format", "json"}));
    EXPECT_EQ(refused.code, 8);
    EXPECT_EQ(refused.findings, QStringList{"nobody-listens"});
}
