#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/console/item_options.h"
#include "apps/driverhost/console/link_options.h"
#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/runs/reading_run.h"
#include "apps/driverhost/terminal/progress.h"
#include "apps/driverhost/watch/watch_options.h"
#include "desk/plan/tag_plan.h"
#include "desk/project/project_file.h"
#include "drivers/tools/project_lookup.h"

namespace
{

const CommandLine::Texts Texts = {
    "tags",
    "[rtutcp://HOST:PORT/STATION|@NAME] --project FILE",
    "Reads all tags of a link of the project, the one of --device, through the driver as a panel would: bits "
    "by runs\n"
    "of those that are used, registers in ranges. Host, port and station are those of the link's default "
    "node unless\n"
    "given. The project holds no kinds: bits are bits, registers are words, or double words with --kind "
    "dword or SW\n"
    "in the address.",
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

// A range that the slave refuses is read again value by value.
void readOrSplit(ReadingRun &values, Session &session, const Reading &reading)
{
    if (values.read(reading))
        return;
    const bool isSplit = session.failure().kind == FailureKind::Exception && reading.shown.size() > 1;
    if (!isSplit) {
        values.fail(reading);
        return;
    }
    for (const Reading &single : oneByOne(reading)) {
        if (!values.read(single))
            values.fail(single);
    }
}

int readTags(Session &session, const std::vector<Reading> &readings, OutputFormat format)
{
    Progress progress(QStringLiteral("tags"), static_cast<qint64>(readings.size()));
    InterruptibleRun run(session, [&](const QString &wait) { progress.showNote(wait); });
    ReadingRun values(session);
    for (size_t i = 0; i < readings.size() && !run.isInterrupted(); ++i) {
        progress.show(static_cast<qint64>(i));
        readOrSplit(values, session, readings[i]);
        if (values.isHopeless()) {
            values.failOthers(readings, i + 1);
            break;
        }
    }
    return values.finish(format, run);
}

// The same readings; those that the slave refuses as a whole value by value.
std::vector<Reading> readable(Session &session, const std::vector<Reading> &readings)
{
    Progress progress(QStringLiteral("tags"), static_cast<qint64>(readings.size()));
    const InterruptibleRun run(session, [&](const QString &wait) { progress.showNote(wait); });
    std::vector<Reading> result;
    bool isConnected = true;
    for (const Reading &reading : readings) {
        progress.show(static_cast<qint64>(result.size()));
        const bool isRead = isConnected && session.read(reading.items);
        isConnected =
            !run.isInterrupted() && (isRead || session.failure().kind != FailureKind::CannotConnect);
        if (isConnected && !isRead && session.failure().kind == FailureKind::Exception) {
            const std::vector<Reading> singles = oneByOne(reading);
            result.insert(result.end(), singles.begin(), singles.end());
        } else {
            result.push_back(reading);
        }
    }
    return run.isInterrupted() ? std::vector<Reading>() : result;
}

int watchTags(Session &session, const std::vector<Reading> &readings, const WatchRun &run)
{
    const std::vector<Reading> usable = readable(session, readings);
    if (!usable.empty() || readings.empty())
        return watchReadings(session, usable, run);
    reportError(QStringLiteral("interrupted"));
    return Interrupted;
}

} // namespace

Job prepareTags(const QStringList &arguments)
{
    CommandLine line(Texts);
    line.addOptions({{QStringLiteral("watch"), QStringLiteral("Keep reading, as watch does.")}});
    addWatchOptions(line);
    line.addOptions(tagOptions());
    line.addOptions({formatOption()});
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
    const Result<> endpoint = takeFromNode(link, *node, line);
    if (!endpoint) {
        reportError(endpoint.errorText());
        return UsageError;
    }
    const TagPlan plan = planTags(tagsOfLink(*project, node->link), kind, options.form);
    const bool isWatched = line.isSet("watch");
    return {link, {}, [=](Session &session) {
                for (const QString &skipped : plan.skipped)
                    report(QStringLiteral("skipped: ") + skipped);
                if (!isWatched)
                    return readTags(session, plan.readings, run.form.format);
                return watchTags(session, plan.readings, watchRunOn(link, run));
            }};
}
