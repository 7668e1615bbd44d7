#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/commands/planned_job.h"
#include "apps/driverhost/console/item_options.h"
#include "apps/driverhost/console/link_options.h"
#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/runs/planned_run.h"
#include "apps/driverhost/watch/watch_options.h"
#include "desk/live/planned_readings.h"
#include "desk/output/plan_form.h"
#include "desk/plan/tag_readings.h"
#include "desk/project/project_file.h"
#include "drivers/tools/project_lookup.h"

namespace
{

const CommandLine::Texts Texts = {
    "tags",
    "[rtutcp://HOST:PORT/STATION|@NAME] --project FILE",
    "Reads all tags of a link of the project, the one of --device, through the driver, by few requests: the "
    "ones that\n"
    "take the line for the shortest time. Host, port and station are those of the link's default node unless "
    "given. The\n"
    "project holds no kinds: bits are bits, registers are words, or double words with --kind dword or SW in "
    "the\n"
    "address.",
    "  driverhost tags --project project.db --device ETHERNET\n"
    "  driverhost tags rtutcp://192.168.0.10:502/1 --project project.db --watch --interval 2",
};

// Where a slave is says the project, unless the command line does.
Result<> takeFromNode(LinkSettings &settings, const Project::Node &node, const CommandLine &line)
{
    if (!line.isGiven("station"))
        settings.channel.station = node.station & 0xFF;
    if (line.isGiven("host"))
        return {};
    if (node.host.isEmpty() || (node.port == 0 && !line.isGiven("port")))
        return Error{
            QStringLiteral(
                "%1: the default node of link %2 has no endpoint; expected a target besides, such as "
                "rtutcp://192.168.0.10:502")
                .arg(settings.project, QString::number(node.link))};
    settings.channel.host = node.host;
    if (!line.isGiven("port"))
        settings.channel.port = node.port;
    return {};
}

int showPlan(const std::vector<Reading> &readings, int linkStation, const PlanOptions &plan,
             OutputFormat format)
{
    Result<Learnt> known = learntFor(plan, readings, linkStation);
    if (!known) {
        reportError(known.errorText());
        return OtherFailure;
    }
    const PlannedPoints points = plannedPointsOf(readings, linkStation);
    std::vector<AreaPlan> areas = areaPlansOf(points.points);
    return print(linesOf(planReportOf(areas, *known), format)) ? Success : OutputClosed;
}

} // namespace

Job prepareTags(const QStringList &arguments)
{
    CommandLine line(Texts);
    line.addOptions({{QStringLiteral("watch"), QStringLiteral("Keep reading, as watch does.")}});
    addWatchOptions(line);
    line.addOptions(
        {{QStringLiteral("plan"),
          QStringLiteral("Show the requests that would bring the tags, what each costs and why, and send "
                         "none.")}});
    line.addOptions(tagOptions());
    line.addOptions({formatOption()});
    line.addOptions(planOptions());
    line.addOptions(linkOptions());
    if (const std::optional<int> end = line.parse(arguments))
        return *end;

    QStringList words = line.words();
    LinkSettings link = linkSettings(line, words);
    const ItemOptions options = itemOptionsOf(line);
    const WatchRun run = watchRunOf(line);
    line.expectWith(line.isSet("watch"), "--watch",
                    {"interval", "count", "duration", "output", "rotate", "on-change", "wide"});
    if (!words.isEmpty())
        line.addError(QStringLiteral("tags takes no addresses; they are in the project"));
    if (link.project.isEmpty())
        line.addError(QStringLiteral("expected --project FILE"));
    const ItemKind kind = options.kind.value_or(options.form == ValueForm::Float ? DoubleWordItem : WordItem);
    if (kind != WordItem && kind != DoubleWordItem)
        line.addError(QStringLiteral("--kind: registers are of the kind word or dword"));
    if (!line.isValid())
        return line.reportUsageError();

    const Result<Project> project = readProjectFile(link.project);
    if (!project) {
        reportError(project.errorText());
        return DatabaseError;
    }
    const std::optional<Project::Node> node = defaultNodeAt(*project, DevStrToHmiPort(link.channel.device));
    if (!node) {
        reportError(QStringLiteral("%1 has no link with a default node for %2")
                        .arg(link.project, link.channel.device));
        return DatabaseError;
    }
    const bool isPlanShown = line.isSet("plan");
    const Result<> endpoint = takeFromNode(link, *node, line);
    if (!endpoint && !isPlanShown) {
        reportError(endpoint.errorText());
        return UsageError;
    }
    const TagReadings tags = tagReadingsOf(tagsOfLink(*project, node->link), kind, options.form);
    const PlanOptions plan = planOptionsOf(line);
    if (isPlanShown)
        return showPlan(tags.readings, link.channel.station, plan, run.form.format);
    const bool isWatched = line.isSet("watch");
    const PlannedTask read = [=](Session &session, const std::vector<Reading> &readings, Learnt &learnt) {
        for (const QString &skipped : tags.skipped)
            report(QStringLiteral("skipped: ") + skipped);
        return isWatched ? watchReadings(session, readings, learnt, watchRunOn(link, run))
                         : readPlanned(session, readings, learnt, run.form.format, QStringLiteral("tags"));
    };
    return plannedJob(link, {}, tags.readings, plan, read);
}
