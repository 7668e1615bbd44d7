#include "desk/startup/beside_database.h"

#include "desk/startup/link_project.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

namespace
{

const char DirectoryVariable[] = "DRIVERHOST_RUN_DIRECTORY";
const char PluginVariable[] = "DRIVERHOST_RUN_PLUGIN";

} // namespace

bool runsBesideDatabase()
{
    const QByteArray directory = qgetenv(DirectoryVariable);
    return !directory.isEmpty() && QFileInfo(QFile::decodeName(directory)).canonicalFilePath() ==
                                       QFileInfo(QCoreApplication::applicationDirPath()).canonicalFilePath();
}

QString inheritedPlugin()
{
    return QFile::decodeName(qgetenv(PluginVariable));
}

RunBesideDatabase runBesideDatabase(const QString &plugin, const LinkSettings &settings,
                                    const QStringList &tags,
                                    const std::function<void(const QString &)> &notify)
{
    // From here on a signal ends the child, not this process, which has to tidy up.
    const SignalForwarding forwarding;
    const RunDirectory directory;
    if (!directory.isValid())
        return {RunBesideDatabase::NoDirectory, directory.errorString(), {}};
    if (!directory.notice().isEmpty())
        notify(directory.notice());
    const Result<> made = makeLinkProject(settings, tags, directory.databasePath());
    if (!made)
        return {RunBesideDatabase::NoDatabase, made.errorText(), {}};
    const Result<ChildEnd> end =
        forwarding.run(directory.programPath(), {{DirectoryVariable, QFile::encodeName(directory.path())},
                                                 {PluginVariable, QFile::encodeName(plugin)}});
    return {end ? RunBesideDatabase::Ran : RunBesideDatabase::NotStarted, end.errorText(),
            end.valueOr(ChildEnd())};
}
