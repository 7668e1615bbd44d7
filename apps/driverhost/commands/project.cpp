#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/console/command_line.h"
#include "apps/driverhost/console/messages.h"
#include "desk/items/number_text.h"
#include "desk/project/device_text.h"
#include "desk/project/project_file.h"
#include "desk/project/project_list.h"
#include "desk/project/project_why.h"
#include "desk/readable_file.h"

#include <QFile>
#include <QFileInfo>

namespace
{

const CommandLine::Texts Texts = {
    "project",
    "FILE",
    "Prints what the project database FILE holds, as the list that --make takes; makes one from such a list; "
    "or\n"
    "explains step by step why a driver does not load it. A list has one thing a line, fields between blanks "
    "or\n"
    "commas:\n"
    "  link 1 ETHERNET                 id, device text\n"
    "  node 1 5 default 10.0.0.5:502   link, station, the link's default, endpoint\n"
    "  tag 1 HR100                     link, address (2-DO5 for station 2)",
    "  driverhost project --make list.txt project.db\n"
    "  driverhost project project.db\n"
    "  driverhost project --why ETHERNET project.db",
};

// Whatever is at \a path is replaced only when that was asked for, and kept beside it. The backup's path,
// empty when there was nothing to keep.
Result<QString> clearWay(const QString &path, bool isForced)
{
    const QFileInfo old(path);
    if (!old.exists() && !old.isSymLink())
        return QString();
    if (old.isDir())
        return Error{QStringLiteral("%1 is a directory; nothing is written").arg(path)};
    if (!isForced)
        return Error{
            QStringLiteral("%1 is there already; nothing is written (--force replaces it and keeps the "
                           "old file as %1.bak)")
                .arg(path)};
    const QString backup = path + QStringLiteral(".bak");
    QFile::remove(backup);
    QFile file(path);
    if (file.copy(backup))
        return backup;
    return Error{QStringLiteral("cannot keep the old file as %1: %2; nothing is written")
                     .arg(backup, file.errorString())};
}

QString contentsText(const Project &project)
{
    return QStringList{counted(project.links.size(), "link"), counted(project.nodes.size(), "node"),
                       counted(project.tags.size(), "tag")}
        .join(QStringLiteral(", "));
}

int makeProject(const QString &listPath, const QString &path, bool isForced)
{
    const Result<QByteArray> list = contentsOf(listPath);
    if (!list) {
        reportError(list.errorText());
        return UsageError;
    }
    const Result<Project> project = parseProjectList(QString::fromUtf8(*list));
    if (!project) {
        reportError(QStringLiteral("%1: %2; nothing is written").arg(listPath, project.errorText()));
        return UsageError;
    }
    const Result<QString> backup = clearWay(path, isForced);
    if (!backup) {
        reportError(backup.errorText());
        return UsageError;
    }
    const Result<> written = writeProjectFile(path, *project);
    if (!written) {
        reportError(written.errorText());
        return OtherFailure;
    }
    report(QStringLiteral("%1: %2").arg(path, contentsText(*project)));
    if (!backup->isEmpty())
        report(QStringLiteral("the old file is %1").arg(*backup));
    return Success;
}

int printProject(const QString &path)
{
    const Result<Project> project = readProjectFile(path);
    if (!project) {
        reportError(project.errorText());
        return DatabaseError;
    }
    return print(projectListOf(*project)) ? Success : OutputClosed;
}

int explain(const QString &path, const QString &device)
{
    const LoadReport report = explainLoad(path, device);
    if (!print(report.steps))
        return OutputClosed;
    return report.isLoaded() ? Success : DatabaseError;
}

} // namespace

Job prepareProject(const QStringList &arguments)
{
    CommandLine line(Texts);
    line.addOptions({
        {QStringLiteral("make"), QStringLiteral("Make FILE from this list. A bad list makes nothing."),
         QStringLiteral("LIST")},
        {QStringLiteral("force"),
         QStringLiteral("Let --make replace a FILE that is there; the old one is kept as FILE.bak.")},
        {QStringLiteral("why"),
         QStringLiteral(
             "Explain what the driver does with FILE for this device text, such as ETHERNET or COM1. FILE "
             "may also be the folder of the program that the driver runs in."),
         QStringLiteral("DEVICE")},
    });
    if (const std::optional<int> end = line.parse(arguments))
        return *end;
    const QStringList words = line.words();
    if (words.size() != 1)
        line.addError(QStringLiteral("expected one file"));
    if (line.isSet("make") && line.isSet("why"))
        line.addError(QStringLiteral("--make and --why are two things"));
    if (line.isSet("force") && !line.isSet("make"))
        line.addError(QStringLiteral("--force goes with --make"));
    const Result<> device = line.isSet("why") ? checkDeviceText(line.text("why")) : Result<>();
    if (!device)
        line.addError(device.errorText());
    if (!line.isValid())
        return line.reportUsageError();
    if (line.isSet("make"))
        return makeProject(line.text("make"), words.first(), line.isSet("force"));
    return line.isSet("why") ? explain(words.first(), line.text("why")) : printProject(words.first());
}
