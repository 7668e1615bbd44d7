#include "desk/startup/run_directory.h"

#include "tests/driverhost/support/host_program.h"
#include "tests/peers/tcp_peer.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <vector>

namespace
{

const int Patience = 30000;

QStringList foldersIn(const QString &place)
{
    return QDir(place).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
}

// Runs a program in a world of its own where `folder` is mounted noexec.
HostRun runWithNoexec(const QString &folder, const QStringList &program,
                      const QProcessEnvironment &environment)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral("unshare"),
                  QStringList{QStringLiteral("--user"), QStringLiteral("--map-root-user"),
                              QStringLiteral("--mount"), QStringLiteral("sh"), QStringLiteral("-c"),
                              QStringLiteral("mount -t tmpfs -o noexec tmpfs \"$0\" && exec \"$@\""),
                              folder} +
                      program);
    HostRun run;
    if (process.waitForFinished(Patience))
        run.code = process.exitCode();
    run.err = QString::fromLocal8Bit(process.readAllStandardError());
    return run;
}

} // namespace

class RunDirectoryTest : public testing::Test
{
protected:
    QProcessEnvironment environment() const
    {
        QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
        variables.insert(QStringLiteral("TMPDIR"), place.path());
        return variables;
    }
    // A read that waits for a reply that nobody sends.
    void startRead(QProcess &process)
    {
        process.setProcessEnvironment(environment());
        process.start(hostProgram(),
                      {QStringLiteral("read"), QStringLiteral("--port"), QString::number(peer.port()),
                       QStringLiteral("--timeout"), QStringLiteral("600000"), QStringLiteral("HR1")});
        ASSERT_TRUE(process.waitForStarted(Patience));
        ASSERT_TRUE(peer.accept());
        ASSERT_EQ(peer.receive(8).size(), 8);
        ASSERT_EQ(foldersIn(place.path()).size(), 1);
    }
    void expectDeathOf(int signal)
    {
        QProcess process;
        startRead(process);
        ASSERT_EQ(kill(static_cast<pid_t>(process.processId()), signal), 0);
        ASSERT_TRUE(process.waitForFinished(Patience));
        EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
        EXPECT_EQ(process.exitCode(), signal);
        EXPECT_TRUE(peer.seesEnd());
        EXPECT_TRUE(foldersIn(place.path()).isEmpty());
    }

    QTemporaryDir place;
    TcpPeer peer;
};

TEST_F(RunDirectoryTest, HoldsTheProgramAndAFolderForTheDatabase)
{
    QString path;
    {
        const RunDirectory directory({place.path()});
        ASSERT_TRUE(directory.isValid()) << directory.errorString().toStdString();
        path = directory.path();
        EXPECT_TRUE(QFileInfo(directory.programPath()).isExecutable());
        EXPECT_FALSE(QFileInfo(directory.programPath()).isSymLink());
        EXPECT_EQ(QFileInfo(directory.programPath()).size(),
                  QFileInfo(QStringLiteral("/proc/self/exe")).size());
        EXPECT_EQ(directory.databasePath(), path + QStringLiteral("/compile/database/database"));
        EXPECT_TRUE(QFileInfo(directory.databasePath()).dir().exists());
        EXPECT_EQ(QFileInfo(path).permissions() & (QFile::ReadOther | QFile::ReadGroup),
                  QFile::Permissions());
    }
    EXPECT_FALSE(QFileInfo::exists(path));
}

TEST_F(RunDirectoryTest, TidiesUpWhatOthersLeftBehindButNotWhatTheyUse)
{
    const QDir folder(place.path());
    ASSERT_TRUE(folder.mkpath(QStringLiteral("driverhost-abCD12/compile/database")));
    ASSERT_TRUE(folder.mkpath(QStringLiteral("driverhost-notes")));
    ASSERT_TRUE(folder.mkpath(QStringLiteral("other")));
    const RunDirectory used({place.path()});
    EXPECT_FALSE(folder.exists(QStringLiteral("driverhost-abCD12")));
    const RunDirectory next({place.path()});
    EXPECT_TRUE(QFileInfo::exists(used.programPath()));
    EXPECT_TRUE(folder.exists(QStringLiteral("driverhost-notes")));
    EXPECT_TRUE(folder.exists(QStringLiteral("other")));
}

TEST_F(RunDirectoryTest, TakesTheNextPlaceAndSaysSo)
{
    const QString file = place.path() + QStringLiteral("/file");
    ASSERT_TRUE(QFile(file).open(QIODevice::WriteOnly));
    const RunDirectory directory({file, place.path()});
    const QString notice = directory.notice();
    ASSERT_TRUE(directory.isValid());
    EXPECT_TRUE(directory.path().startsWith(place.path()));
    EXPECT_TRUE(notice.contains(file) && notice.contains(place.path())) << notice.toStdString();
    EXPECT_TRUE(RunDirectory({place.path()}).notice().isEmpty());
}

TEST_F(RunDirectoryTest, SaysWhenThereIsNoPlaceAtAll)
{
    const QString file = place.path() + QStringLiteral("/file");
    ASSERT_TRUE(QFile(file).open(QIODevice::WriteOnly));
    const RunDirectory directory({file});
    EXPECT_FALSE(directory.isValid());
    EXPECT_TRUE(directory.errorString().contains(QLatin1String("TMPDIR")));
}

TEST_F(RunDirectoryTest, GoesElsewhereWhereProgramsCannotRun)
{
    const QDir folder(place.path());
    ASSERT_TRUE(folder.mkdir(QStringLiteral("noexec")) && folder.mkdir(QStringLiteral("runtime")));
    const QString noexec = folder.filePath(QStringLiteral("noexec"));
    if (runWithNoexec(noexec, {QStringLiteral("true")}, environment()).code != 0)
        GTEST_SKIP() << "nothing can be mounted here";

    const quint16 port = peer.port();
    peer.stopListening();
    const QStringList program{hostProgram(),         QStringLiteral("read"),      QStringLiteral("--port"),
                              QString::number(port), QStringLiteral("--retries"), QStringLiteral("0"),
                              QStringLiteral("HR1")};
    QProcessEnvironment variables = environment();
    variables.insert(QStringLiteral("TMPDIR"), noexec);
    variables.insert(QStringLiteral("XDG_RUNTIME_DIR"), folder.filePath(QStringLiteral("runtime")));
    const HostRun elsewhere = runWithNoexec(noexec, program, variables);
    EXPECT_EQ(elsewhere.code, 3) << elsewhere.err.toStdString();
    EXPECT_TRUE(elsewhere.err.startsWith(QLatin1String("driverhost: programs cannot run from ") + noexec))
        << elsewhere.err.toStdString();

    variables.insert(QStringLiteral("XDG_RUNTIME_DIR"), noexec);
    variables.insert(QStringLiteral("XDG_CACHE_HOME"), noexec);
    const HostRun nowhere = runWithNoexec(noexec, program, variables);
    EXPECT_EQ(nowhere.code, 1);
    EXPECT_TRUE(nowhere.err.contains(QLatin1String("TMPDIR"))) << nowhere.err.toStdString();
}

TEST_F(RunDirectoryTest, IsMadeNowhereElseWhenTheFolderIsMissing)
{
    const QString missing = place.path() + QStringLiteral("/no/such");
    QProcessEnvironment variables = environment();
    variables.insert(QStringLiteral("TMPDIR"), missing);
    variables.insert(QStringLiteral("XDG_RUNTIME_DIR"), missing);
    variables.insert(QStringLiteral("XDG_CACHE_HOME"), missing);
    const HostRun run = runHost({QStringLiteral("read"), QStringLiteral("HR1")}, variables);
    EXPECT_EQ(run.code, 1);
    const QString reason =
        QStringLiteral("no folder can be made in %1 (No such file or directory)").arg(missing);
    EXPECT_TRUE(run.err.startsWith(QStringLiteral("driverhost: no folder to run the driver from: ") + reason))
        << run.err.toStdString();
    EXPECT_FALSE(run.err.contains(QLatin1String("QDir"))) << run.err.toStdString();
}

TEST_F(RunDirectoryTest, ManyRunsAtOnceDoNotGetInEachOthersWay)
{
    const quint16 port = peer.port();
    peer.stopListening();
    std::vector<std::unique_ptr<QProcess>> processes;
    for (int i = 0; i < 16; ++i) {
        processes.push_back(std::make_unique<QProcess>());
        processes.back()->setProcessEnvironment(environment());
        processes.back()->start(hostProgram(), {QStringLiteral("read"), QStringLiteral("--port"),
                                                QString::number(port), QStringLiteral("HR1")});
    }
    for (const std::unique_ptr<QProcess> &process : processes) {
        ASSERT_TRUE(process->waitForFinished(Patience));
        EXPECT_EQ(process->exitCode(), 3);
        const QByteArray reported = process->readAllStandardError();
        EXPECT_EQ(reported.count('\n'), 3) << reported.constData();
    }
    EXPECT_TRUE(foldersIn(place.path()).isEmpty());
}

TEST_F(RunDirectoryTest, IsRemovedWhenTheRunIsInterrupted)
{
    expectDeathOf(SIGINT);
}

TEST_F(RunDirectoryTest, IsRemovedWhenTheRunIsTerminated)
{
    expectDeathOf(SIGTERM);
}

TEST_F(RunDirectoryTest, IsRemovedWhenTheTerminalHangsUp)
{
    expectDeathOf(SIGHUP);
}

TEST_F(RunDirectoryTest, IsRemovedByTheNextRunAfterAKill)
{
    QProcess process;
    startRead(process);
    process.kill();
    ASSERT_TRUE(process.waitForFinished(Patience));
    EXPECT_TRUE(peer.seesEnd()) << "the child outlives its parent";
    ASSERT_EQ(foldersIn(place.path()).size(), 1);

    QProcess next;
    peer.close();
    peer.stopListening();
    const HostRun run =
        runHost({QStringLiteral("read"), QStringLiteral("--port"), QString::number(peer.port()),
                 QStringLiteral("--retries"), QStringLiteral("0"), QStringLiteral("HR1")},
                environment());
    EXPECT_EQ(run.code, 3) << run.err.toStdString();
    EXPECT_TRUE(foldersIn(place.path()).isEmpty());
}
