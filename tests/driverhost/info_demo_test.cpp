#include "tests/driverhost/support/host_program.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(HostInfo, ShowsWhatThePluginSaysAboutItself)
{
    const HostRun run = runHost({QStringLiteral("info"), QStringLiteral("--plugin"), pluginFile()});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.err, QString());
    const QString text = run.out.simplified();
    for (const char *part :
         {"name Modbus RTU Slave over TCP", "maker Modbus", "version 1.0.0", "registers a request 125",
          "bits a request 2008", "total size 278528", "communication flags 0x100", "default time-out 3000 ms",
          "default retries 3", "com.brenwick.drivers.DriverInterface/1.1",
          "CreateDriver, qt_plugin_instance, qt_plugin_query_verification_data", "version=4.8.6"})
        EXPECT_TRUE(text.contains(QLatin1String(part))) << part;
}

TEST(HostInfo, FindsThePluginOfTheBuildAndRefusesOthers)
{
    EXPECT_EQ(runHost({QStringLiteral("info")}).code, 0);
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("libnone.so"));
    const HostRun missing = runHost({QStringLiteral("info"), QStringLiteral("--plugin"), path});
    EXPECT_EQ(missing.code, 1);
    EXPECT_TRUE(missing.err.contains(path));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("no library");
    file.close();
    EXPECT_EQ(runHost({QStringLiteral("info"), QStringLiteral("--plugin"), path}).code, 1);
    EXPECT_EQ(runHost({QStringLiteral("read"), QStringLiteral("HR1"), QStringLiteral("--plugin"), path}).code,
              1);
}

TEST(HostDemo, FindsEverythingAsItShouldBe)
{
    const HostRun run = runHost({QStringLiteral("demo"), QStringLiteral("--plugin"), pluginFile()});
    EXPECT_EQ(run.code, 0) << run.out.toStdString() << run.err.toStdString();
    EXPECT_FALSE(run.out.contains(QLatin1String("WRONG")));
    EXPECT_TRUE(run.out.contains(QLatin1String("Everything is as it should be.")));
    // Every kind of item, read and where there is a writer written, with its bytes.
    for (const char *area : {"HR", "FN6HR", "IR", "DI", "DO", "FN5DO"}) {
        for (const char *kind : {"bit", "bit2", "byte", "block", "word", "dword"}) {
            const bool isBitArea = area[0] == 'D' || QLatin1String(area) == QLatin1String("FN5DO");
            const bool isRegisterKind = QLatin1String(kind).contains(QLatin1String("word"));
            const QRegularExpression row(
                QStringLiteral("^read +%1(?:SW)?\\d+(?:\\.\\d+)? +%2 .* ok\n +> 01 0[1-4] ")
                    .arg(QLatin1String(area), QLatin1String(kind)),
                QRegularExpression::MultilineOption);
            EXPECT_EQ(row.match(run.out).hasMatch(), !(isBitArea && isRegisterKind)) << area << ' ' << kind;
        }
    }
    EXPECT_TRUE(run.out.contains(QLatin1String("PLC no response (read 1 word(s) from 1-HR100)")));
}

TEST(Host, ExplainsItself)
{
    const HostRun help = runHost({QStringLiteral("--help")});
    EXPECT_EQ(help.code, 0);
    EXPECT_TRUE(help.out.startsWith(QLatin1String("Usage: driverhost SUBCOMMAND")));
    EXPECT_EQ(runHost({}).code, 2);
    EXPECT_EQ(runHost({QStringLiteral("frobnicate")}).code, 2);
    for (const char *name : {"info", "read", "write", "demo"}) {
        const HostRun run = runHost({QLatin1String(name), QStringLiteral("--help")});
        EXPECT_EQ(run.code, 0) << name;
        EXPECT_TRUE(run.out.startsWith(QLatin1String("Usage: driverhost ") + QLatin1String(name))) << name;
        EXPECT_TRUE(run.out.contains(QLatin1String("Example:\n  driverhost "))) << name;
    }
}
