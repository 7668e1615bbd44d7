#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/console/item_options.h"
#include "apps/driverhost/console/link_options.h"
#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/console/plan_options.h"
#include "apps/driverhost/runs/reading_run.h"
#include "apps/driverhost/terminal/progress.h"
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

class TagsListener : public ReadingListener
{
public:
    TagsListener(const std::vector<Reading> &readings, ReadingRun &values, Progress &progress)
        : m_readings(readings), m_values(values), m_progress(progress)
    {
    }

    bool add(size_t reading, const QByteArray &data) override
    {
        m_values.add(m_readings[reading], data);
        m_progress.show(++m_done);
        return true;
    }
    bool addFailure(const std::vector<size_t> &readings, const Failure & /*failure*/) override
    {
        m_values.fail(these(readings));
        return true;
    }
    bool addNotAsked(const std::vector<size_t> &readings, const Failure &failure) override
    {
        m_values.failUnasked(these(readings), failure);
        return true;
    }
    void addCommand(bool /*isRead*/) override {}

private:
    std::vector<const Reading *> these(const std::vector<size_t> &readings)
    {
        m_done += static_cast<qint64>(readings.size());
        std::vector<const Reading *> failed;
        for (const size_t reading : readings)
            failed.push_back(&m_readings[reading]);
        return failed;
    }

    const std::vector<Reading> &m_readings;
    ReadingRun &m_values;
    Progress &m_progress;
    qint64 m_done = 0;
};

int readTags(Session &session, const std::vector<Reading> &readings, Learnt &learnt, OutputFormat format)
{
    Progress progress(QStringLiteral("tags"), static_cast<qint64>(readings.size()));
    InterruptibleRun run(session, [&](const QString &wait) { progress.showNote(wait); });
    ReadingRun values(session);
    TagsListener listener(readings, values, progress);
    PlannedReadings(session, readings, learnt).readRound(listener);
    return values.finish(format, run);
}

int showPlan(const std::vector<Reading> &readings, int linkStation, Learnt learnt, OutputFormat format)
{
    const PlannedPoints points = plannedPointsOf(readings, linkStation);
    std::vector<AreaPlan> areas = areaPlansOf(points.points);
    return print(linesOf(planReportOf(areas, learnt), format)) ? Success : OutputClosed;
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
    const Result<Learnt> known = learntFor(plan, tags.readings, link.channel.station);
    if (!known) {
        reportError(known.errorText());
        return OtherFailure;
    }
    if (isPlanShown)
        return showPlan(tags.readings, link.channel.station, *known, run.form.format);
    const bool isWatched = line.isSet("watch");
    return {link, {}, [=](Session &session) {
                for (const QString &skipped : tags.skipped)
                    report(QStringLiteral("skipped: ") + skipped);
                Learnt learnt = *known;
                const int code = isWatched
                                     ? watchReadings(session, tags.readings, learnt, watchRunOn(link, run))
                                     : readTags(session, tags.readings, learnt, run.form.format);
                return keepLearnt(plan, learnt, code);
            }};
}
