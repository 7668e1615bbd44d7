#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/console/command_line.h"
#include "apps/driverhost/console/messages.h"
#include "desk/items/number_text.h"
#include "desk/link_defaults.h"
#include "desk/points/csv_table.h"
#include "desk/points/point_check.h"
#include "desk/points/point_drafts.h"
#include "desk/points/point_file.h"
#include "desk/project/device_text.h"
#include "desk/project/project_file.h"
#include "drivers/tools/project_lookup.h"

#include <QFile>

#include <cstdio>

namespace
{

const CommandLine::Texts Texts = {
    "points",
    "--check FILE | --from-project DB | --from-scan FILE",
    "Checks a table of points, which gives values names, or makes a first one to go on with. A table is a "
    "file "
    "of comma\n"
    "separated values, as spreadsheets save it, with a row of titles: name, address and whichever else of "
    "type, "
    "order,\n"
    "scale, offset, unit, low, high, states and comment are wanted.",
    "  driverhost points --check boiler.csv\n"
    "  driverhost scan rtutcp://192.168.0.10:502/5 HR | driverhost points --from-scan - >boiler.csv",
};

int printed(const QStringList &lines, int code)
{
    return lines.isEmpty() || print(lines) ? code : OutputClosed;
}

int checkPoints(const QString &path)
{
    const Result<std::vector<Point>> points = readPointFile(path);
    if (!points) {
        reportError(points.errorText());
        return UsageError;
    }
    QStringList odd = oddPoints(*points);
    for (QString &line : odd)
        line.prepend(path + QLatin1Char(':'));
    report(QStringLiteral("%1: %2, %3")
               .arg(path, counted(static_cast<qint64>(points->size()), "point"),
                    counted(odd.size(), "overlap")));
    return printed(odd, odd.isEmpty() ? Success : FoundDifferent);
}

int draftFromProject(const QString &path, const QString &device)
{
    const Result<Project> project = readProjectFile(path);
    if (!project) {
        reportError(project.errorText());
        return DatabaseError;
    }
    const std::optional<Project::Node> node = defaultNodeAt(*project, DevStrToHmiPort(device));
    if (!node) {
        reportError(QStringLiteral("%1 has no link with a default node for %2").arg(path, device));
        return DatabaseError;
    }
    return printed(draftOfTags(tagsOfLink(*project, node->link)), Success);
}

bool openForReading(QFile &file, const QString &path)
{
    if (path == QLatin1String("-"))
        return file.open(stdin, QIODevice::ReadOnly);
    file.setFileName(path);
    return file.open(QIODevice::ReadOnly);
}

int draftFromScan(const QString &path)
{
    QFile file;
    if (!openForReading(file, path)) {
        reportError(QStringLiteral("%1: %2").arg(path, file.errorString()));
        return UsageError;
    }
    const Result<QStringList> draft = draftOfRanges(decodedText(file.readAll()).split(QLatin1Char('\n')));
    if (draft)
        return printed(*draft, Success);
    reportError(QStringLiteral("%1:%2").arg(path, draft.errorText()));
    return UsageError;
}

} // namespace

Job preparePoints(const QStringList &arguments)
{
    CommandLine line(Texts);
    line.addOptions({
        {QStringLiteral("check"),
         QStringLiteral(
             "Report what is wrong with this table: whatever cannot be read, and points that share "
             "registers or bits."),
         QStringLiteral("FILE")},
        {QStringLiteral("from-project"), QStringLiteral("Make a table of the tags in this project database."),
         QStringLiteral("DB")},
        {QStringLiteral("from-scan"),
         QStringLiteral("Make a table of what scan has found, a range a line; - for standard input."),
         QStringLiteral("FILE")},
        {QStringLiteral("device"),
         QStringLiteral("With --from-project: device text of the link (default %1).")
             .arg(QLatin1String(DefaultDevice)),
         QStringLiteral("TEXT"), QLatin1String(DefaultDevice)},
    });
    if (const std::optional<int> end = line.parse(arguments))
        return *end;
    if (line.isSet("check") + line.isSet("from-project") + line.isSet("from-scan") != 1 ||
        !line.words().isEmpty())
        line.addError(QStringLiteral("expected one of --check FILE, --from-project DB and --from-scan FILE"));
    if (line.isSet("device") && !line.isSet("from-project"))
        line.addError(QStringLiteral("--device goes with --from-project"));
    const Result<> device = checkDeviceText(line.text("device"));
    if (!device)
        line.addError(device.errorText());
    if (!line.isValid())
        return line.reportUsageError();
    if (line.isSet("check"))
        return checkPoints(line.text("check"));
    if (line.isSet("from-project"))
        return draftFromProject(line.text("from-project"), line.text("device"));
    return draftFromScan(line.text("from-scan"));
}
