#include "tests/driverhost/support/slave_test.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

// Targets that need not be repeated.

class TargetTest : public SlaveTest
{
protected:
    TargetTest() : SlaveTest(twoStations()), environment(QProcessEnvironment::systemEnvironment())
    {
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), folder.path());
    }

    static SlaveOptions twoStations()
    {
        SlaveOptions options;
        options.stations = {1, 2};
        return options;
    }
    void SetUp() override
    {
        SlaveTest::SetUp();
        setHoldingRegister(0, 11);
        slave.setValue(2, Area::HoldingRegisters, 0, 22);
    }

    HostRun run(const QString &arguments)
    {
        QStringList words = arguments.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        words.replaceInStrings(QStringLiteral("TARGET"), target());
        return runHost(words, environment);
    }
    void setEnvironmentTarget(const QString &text)
    {
        environment.insert(QStringLiteral("DRIVERHOST_TARGET"), text);
    }
    QString file() const { return folder.filePath(QStringLiteral("driverhost/targets.ini")); }
    QString contents() const
    {
        QFile opened(file());
        return opened.open(QIODevice::ReadOnly) ? QString::fromUtf8(opened.readAll()) : QString();
    }

    QTemporaryDir folder;
    QProcessEnvironment environment;
};

TEST_F(TargetTest, IsAddedListedUsedAndRemoved)
{
    EXPECT_TRUE(run(QStringLiteral("target")).err.contains(QStringLiteral("no targets in ") + file()));
    const HostRun added =
        run(QStringLiteral("target add boiler TARGET --timeout 700 --retries 1 --points p.csv"));
    EXPECT_EQ(added.code, 0) << added.err.toStdString();
    EXPECT_EQ(contents(), QStringLiteral("[boiler]\nhost = 127.0.0.1\nport = %1\nstation = 1\ntimeout = 700\n"
                                         "retries = 1\npoints = %2/p.csv\n")
                              .arg(slave.port())
                              .arg(QDir::currentPath()));
    EXPECT_TRUE(run(QStringLiteral("target")).out.contains(QLatin1String("boiler  host=127.0.0.1 ")));
    EXPECT_EQ(run(QStringLiteral("target remove boiler")).code, 0);
    EXPECT_EQ(run(QStringLiteral("target remove boiler")).code, 2);
    EXPECT_EQ(contents(), QStringLiteral("\n"));
}

TEST_F(TargetTest, GivesWhatNoOptionSays)
{
    run(QStringLiteral("target add plc TARGET"));
    const HostRun plain = run(QStringLiteral("read @plc HR1"));
    EXPECT_EQ(plain.code, 0) << plain.err.toStdString();
    EXPECT_TRUE(plain.out.contains(QLatin1String("11"))) << plain.out.toStdString();
    EXPECT_TRUE(run(QStringLiteral("read @plc HR1 --station 2")).out.contains(QLatin1String("22")))
        << "an option beats the name";
}

TEST_F(TargetTest, MayNameATableOfPointsThatIsStillToBeMade)
{
    run(QStringLiteral("target add plc TARGET --points ") + folder.filePath(QStringLiteral("p.csv")));
    EXPECT_EQ(run(QStringLiteral("read @plc HR1")).code, 0);
    const HostRun named = run(QStringLiteral("read @plc pump1"));
    EXPECT_EQ(named.code, 2);
    EXPECT_TRUE(named.err.contains(QLatin1String("address \"pump1\": "))) << named.err.toStdString();
    EXPECT_TRUE(named.err.contains(
        QStringLiteral("; and there is no %1/p.csv, the target's table of points").arg(folder.path())))
        << named.err.toStdString();
    EXPECT_TRUE(run(QStringLiteral("read @plc")).err.contains(QLatin1String("no address, and there is no ")));
    EXPECT_EQ(run(QStringLiteral("read @plc HR1 --points none.csv")).code, 2) << "an option means it";
    QFile table(folder.filePath(QStringLiteral("p.csv")));
    ASSERT_TRUE(table.open(QIODevice::WriteOnly));
    table.write("name,address\npump1,HR1\n");
    table.close();
    EXPECT_TRUE(run(QStringLiteral("read @plc")).out.contains(QLatin1String("pump1  11")));
}

TEST_F(TargetTest, ComesFromTheEnvironmentWhenNobodyNamesOne)
{
    setEnvironmentTarget(target(2));
    EXPECT_TRUE(run(QStringLiteral("read HR1")).out.contains(QLatin1String("22")));
    EXPECT_TRUE(run(QStringLiteral("read TARGET HR1")).out.contains(QLatin1String("11")));
    run(QStringLiteral("target add plc TARGET"));
    EXPECT_TRUE(run(QStringLiteral("read @plc HR1")).out.contains(QLatin1String("11")))
        << "a name beats the environment";
    setEnvironmentTarget(QStringLiteral("@plc"));
    EXPECT_TRUE(run(QStringLiteral("read HR1")).out.contains(QLatin1String("11")));
}

TEST_F(TargetTest, TraceSaysWhichWasTaken)
{
    run(QStringLiteral("target add plc TARGET"));
    EXPECT_TRUE(run(QStringLiteral("read @plc HR1 --trace"))
                    .err.contains(QStringLiteral("target %1: @plc of %2\n").arg(target(), file())));
    setEnvironmentTarget(QStringLiteral("@plc"));
    EXPECT_TRUE(
        run(QStringLiteral("read HR1 --trace"))
            .err.contains(QStringLiteral("of %1, by DRIVERHOST_TARGET in the environment\n").arg(file())));
    EXPECT_TRUE(run(QStringLiteral("read TARGET HR1 --trace"))
                    .err.contains(QStringLiteral("target %1: as given\n").arg(target())));
}

TEST_F(TargetTest, SaysWhatIsWrong)
{
    const struct {
        const char *arguments;
        const char *error;
    } cases[] = {
        {"read @nobody HR1", "there is no target \"nobody\" in "},
        {"read @a TARGET HR1", ": one target is there already"},
        {"target add", "expected nothing, add NAME"},
        {"target frobnicate x", "expected nothing, add NAME"},
        {"target add boiler", "expected a target such as rtutcp://"},
        {"target add a/b TARGET", "target \"a/b\": expected a name of letters"},
        {"target add boiler TARGET HR1", "\"HR1\": expected nothing after the target"},
        {"target add boiler TARGET --timeout 0", "--timeout \"0\": expected a whole number from 1"},
    };
    for (const auto &one : cases) {
        const HostRun bad = run(QLatin1String(one.arguments));
        EXPECT_EQ(bad.code, 2) << one.arguments;
        EXPECT_TRUE(bad.err.contains(QLatin1String(one.error))) << one.arguments << bad.err.toStdString();
    }
    setEnvironmentTarget(QStringLiteral("http://x"));
    EXPECT_TRUE(run(QStringLiteral("read HR1"))
                    .err.contains(QLatin1String("DRIVERHOST_TARGET in the environment: target \"http://x\": "
                                                "unknown scheme \"http\"; expected rtutcp")));
}

TEST_F(TargetTest, NamesTheFileThatHoldsABadSetting)
{
    run(QStringLiteral("target add plc TARGET"));
    QFile opened(file());
    ASSERT_TRUE(opened.open(QIODevice::Append));
    opened.write("timeout = soon\n");
    opened.close();
    const HostRun bad = run(QStringLiteral("read @plc HR1"));
    EXPECT_EQ(bad.code, 2);
    EXPECT_TRUE(
        bad.err.contains(QStringLiteral("@plc of %1: timeout \"soon\": expected a whole number").arg(file())))
        << bad.err.toStdString();
    ASSERT_TRUE(opened.open(QIODevice::Append));
    opened.write("tiemout = 5\n");
    opened.close();
    EXPECT_TRUE(run(QStringLiteral("target"))
                    .err.contains(file() + QStringLiteral(":6: \"tiemout\": expected one of host")));
}
