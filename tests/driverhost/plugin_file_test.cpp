#include "desk/link/loaded_driver.h"
#include "tests/driverhost/support/host_program.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <link.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <unistd.h>

// Files that are no plug-in, or not any more.

namespace
{

// What a broken disk or download may leave of a plug-in: all its tables, and no code.
QByteArray withoutCode()
{
    QFile file(pluginFile());
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QByteArray bytes = file.readAll();
    ElfW(Ehdr) head = {};
    memcpy(&head, bytes.constData(), sizeof head);
    for (int i = 0; i < head.e_phnum; ++i) {
        ElfW(Phdr) part = {};
        memcpy(&part, bytes.constData() + head.e_phoff + static_cast<size_t>(i) * sizeof part, sizeof part);
        if (part.p_type == PT_LOAD && (part.p_flags & PF_X) != 0)
            memset(bytes.data() + part.p_offset, 0xFF, part.p_filesz);
    }
    return bytes;
}

// From now on the permissions of files hold for programs that are started here, also when root starts them.
void giveUpRightsToFiles()
{
    for (const int right : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH})
        ASSERT_EQ(geteuid() == 0 ? prctl(PR_CAPBSET_DROP, right, 0, 0, 0) : 0, 0) << strerror(errno);
}

} // namespace

class PluginFileTest : public testing::Test
{
protected:
    QString make(const char *name, const QByteArray &bytes)
    {
        const QString path = folder.filePath(QLatin1String(name));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return path;
    }
    static void expectError(const QStringList &arguments, const QString &text)
    {
        const HostRun run = runHost(arguments);
        EXPECT_EQ(run.code, 1) << arguments.join(' ').toStdString();
        EXPECT_TRUE(run.err.contains(text)) << run.err.toStdString();
    }

    QTemporaryDir folder;
};

TEST_F(PluginFileTest, ThatCrashesIsNamed)
{
    const QString path = make("damaged.so", withoutCode());
    for (const QStringList &arguments : {QStringList{"info"}, QStringList{"read", "HR1", "--port", "9"}})
        expectError(arguments + QStringList{"--plugin", path},
                    path + ": the loader or the plug-in crashed (");
}

TEST_F(PluginFileTest, ThatCannotBeLoadedIsNamed)
{
    const QString path = make("text.so", "no library");
    for (const QStringList &arguments : {QStringList{"info"}, QStringList{"read", "HR1"}})
        expectError(arguments + QStringList{"--plugin", path}, path);
}

TEST_F(PluginFileTest, ThatCannotBeReadIsNamed)
{
    giveUpRightsToFiles();
    const QString path = make("secret.so", "no library");
    ASSERT_TRUE(QFile::setPermissions(path, QFile::WriteOwner));
    for (const QStringList &arguments : {QStringList{"info"}, QStringList{"read", "HR1"}})
        expectError(arguments + QStringList{"--plugin", path}, path + ": Permission denied");
}

TEST_F(PluginFileTest, IsInWhatTheLoaderSays)
{
    const QString path = folder.filePath("none.so");
    EXPECT_TRUE(LoadedDriver(path).errorString().contains(path))
        << LoadedDriver(path).errorString().toStdString();
}
