#include "desk/targets/target_file.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace
{

class TargetFileTest : public testing::Test
{
protected:
    void write(const QByteArray &text) const
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    QByteArray contents() const
    {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QString path() const { return folder.filePath(QStringLiteral("targets.ini")); }
    TargetFile file() const
    {
        const Result<TargetFile> targets = TargetFile::read(path());
        EXPECT_TRUE(targets) << targets.errorText().toStdString();
        return *targets;
    }
    QString problemOf(const QByteArray &text) const
    {
        write(text);
        return TargetFile::read(path()).errorText();
    }

    QTemporaryDir folder;
};

const TargetSettings Boiler{{QStringLiteral("host"), QStringLiteral("10.0.0.5")},
                            {QStringLiteral("station"), QStringLiteral("5")}};

} // namespace

TEST_F(TargetFileTest, HasNoTargetsWhereThereIsNoFile)
{
    EXPECT_TRUE(file().names().isEmpty());
    EXPECT_FALSE(file().find(QStringLiteral("boiler")));
}

TEST_F(TargetFileTest, IsReadAsPeopleWriteIt)
{
    write("# of the plant\r\n[boiler]\r\nHost=10.0.0.5\n station = 5 \n; later: port\n\n[pump-2]\npoints = "
          "pumps.csv\n"
          "project = /srv/plant.db\n");
    EXPECT_EQ(file().names(), (QStringList{QStringLiteral("boiler"), QStringLiteral("pump-2")}));
    EXPECT_EQ(file().find(QStringLiteral("boiler")), Boiler);
    const TargetSettings pump = file().find(QStringLiteral("pump-2")).value_or(TargetSettings());
    EXPECT_EQ(pump.at(QStringLiteral("points")), folder.filePath(QStringLiteral("pumps.csv")));
    EXPECT_EQ(pump.at(QStringLiteral("project")), QStringLiteral("/srv/plant.db"));
    EXPECT_FALSE(file().find(QStringLiteral("Boiler")));
}

TEST_F(TargetFileTest, AddsAndRemovesWithoutTouchingTheRest)
{
    const QByteArray before = "# mine\n[boiler]\nhost = 1.2.3.4\n# keep\n\n[other]\nport = 503\n";
    write(before);
    TargetFile targets = file();
    ASSERT_TRUE(targets.add(QStringLiteral("new"), Boiler));
    ASSERT_TRUE(targets.save());
    EXPECT_EQ(contents(), before + "\n[new]\nhost = 10.0.0.5\nstation = 5\n");
    EXPECT_EQ(file().find(QStringLiteral("new")), Boiler);
    EXPECT_TRUE(targets.remove(QStringLiteral("new")));
    ASSERT_TRUE(targets.save());
    EXPECT_EQ(contents(), before);
    EXPECT_TRUE(targets.remove(QStringLiteral("boiler")));
    EXPECT_FALSE(targets.remove(QStringLiteral("boiler")));
    ASSERT_TRUE(targets.save());
    EXPECT_EQ(contents(), "# mine\n# keep\n\n[other]\nport = 503\n");
}

TEST_F(TargetFileTest, MakesItsFolder)
{
    const QString deep = folder.filePath(QStringLiteral("a/b/targets.ini"));
    TargetFile targets = *TargetFile::read(deep);
    ASSERT_TRUE(targets.add(QStringLiteral("boiler"), Boiler));
    ASSERT_TRUE(targets.save());
    EXPECT_EQ(TargetFile::read(deep)->names().size(), 1);
}

TEST_F(TargetFileTest, SaysInWhichLineWhatWasExpected)
{
    const struct {
        const char *text;
        const char *problem;
    } cases[] = {
        {"host = x\n", ":1: \"host = x\": expected a target's name in brackets first"},
        {"[a]\nhost\n", ":2: \"host\": expected SETTING = VALUE"},
        {"[a]\nhots = x\n", ":2: \"hots\": expected one of host, port, station, timeout, retries, delay"},
        {"[a]\nhost = x\nHOST = y\n", ":3: \"host\" is set already"},
        {"[a]\n\n[a]\n", ":3: there is a target \"a\" already"},
        {"[a\nhost = x\n", ":1: \"[a\": expected a target's name in brackets first"},
        {"[a b]\n", ":1: \"a b\": expected a name of letters"},
        {"[]\n", ":1: \"\": expected a name of letters"},
    };
    for (const auto &one : cases)
        EXPECT_TRUE(problemOf(one.text).startsWith(path() + QLatin1String(one.problem)))
            << problemOf(one.text).toStdString();
    write("[a]\n");
    EXPECT_TRUE(file().add(QStringLiteral("a"), Boiler).errorText().contains(QLatin1String("already")));
    EXPECT_TRUE(
        file().add(QStringLiteral("-a"), Boiler).errorText().contains(QLatin1String("expected a name")));
    EXPECT_TRUE(
        file().add(QStringLiteral("a/b"), Boiler).errorText().contains(QLatin1String("expected a name")));
}

TEST_F(TargetFileTest, SaysWhyItCannotBeSaved)
{
    TargetFile targets = *TargetFile::read(QStringLiteral("/proc/none/targets.ini"));
    ASSERT_TRUE(targets.add(QStringLiteral("a"), Boiler));
    EXPECT_TRUE(targets.save().errorText().startsWith(QLatin1String("/proc/none")));
}

TEST_F(TargetFileTest, IsNoFolder)
{
    TargetFile targets = file();
    ASSERT_TRUE(QDir().mkpath(path()));
    EXPECT_TRUE(targets.save().errorText().startsWith(path() + QStringLiteral(": ")));
    EXPECT_TRUE(TargetFile::read(path()).errorText().startsWith(path() + QStringLiteral(": ")));
}

TEST_F(TargetFileTest, MayLackTheEndOfItsLastLine)
{
    write("[boiler]\nhost = 10.0.0.5\nstation = 5");
    EXPECT_EQ(file().find(QStringLiteral("boiler")), Boiler);
    ASSERT_TRUE(file().save());
    EXPECT_EQ(contents(), "[boiler]\nhost = 10.0.0.5\nstation = 5\n");
}
