#include "apps/driverdesk/opening/window_options.h"

#include "apps/driverdesk/opening/project_ground.h"
#include "apps/driverhost/console/link_options.h"
#include "apps/driverhost/console/plan_options.h"
#include "apps/driverhost/console/point_options.h"
#include "apps/driverhost/console/target_choice.h"
#include "desk/items/target.h"
#include "desk/readings/value_readings.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <climits>

namespace
{

const int MaxInterval = 3600 * 1000;

const CommandLine::Texts Texts = {
    "driverdesk",
    "[rtutcp://HOST:PORT/STATION|@NAME] [ADDRESS[:TYPE[xCOUNT]][@ORDER]... | NAME...]",
    "A window on slaves: live points, trends, what goes over the line, and a slave of its own. Opens the "
    "points of "
    "a\n"
    "table, the tags of a project, or addresses. Without anything to open the window says what to do first.",
    "  driverdesk --demo\n"
    "  driverdesk rtutcp://192.168.0.10:502/1 HR100..107 DI17 --interval 0.5\n"
    "  driverdesk @boiler --points boiler.csv\n"
    "  driverdesk --project project.db --device ETHERNET",
};

// What says how the window is, and not what it is opened on.
const QStringList &ownOptions()
{
    static const QStringList names = {QStringLiteral("--demo"), QStringLiteral("--dark"),
                                      QStringLiteral("--seed"), QStringLiteral("--workspace")};
    return names;
}

bool takesValue(const QString &ownOption)
{
    return ownOption == QLatin1String("--seed") || ownOption == QLatin1String("--workspace");
}

// A file that is named from the folder where the program was started is to be found from anywhere.
QString withAbsolutePath(const QString &option, const QString &value)
{
    for (const char *name : {"--points", "--project", "--plugin", "--learnt", "--record"}) {
        if (option == QLatin1String(name) && !value.isEmpty())
            return QFileInfo(value).absoluteFilePath();
    }
    return value;
}

QStringList openingPart(const QStringList &arguments)
{
    QStringList part;
    QString before;
    for (int i = 0; i < arguments.size(); ++i) {
        const QString name = arguments.at(i).section(QLatin1Char('='), 0, 0);
        if (ownOptions().contains(name)) {
            i += takesValue(name) && name == arguments.at(i) ? 1 : 0;
            continue;
        }
        const bool isJoined = name.startsWith(QLatin1String("--")) && name != arguments.at(i);
        part += isJoined ? name + QLatin1Char('=') +
                               withAbsolutePath(name, arguments.at(i).section(QLatin1Char('='), 1))
                         : withAbsolutePath(before, arguments.at(i));
        before = arguments.at(i);
    }
    return part;
}

bool namesValues(const CommandLine &line)
{
    const QStringList words = line.words();
    return std::any_of(words.begin(), words.end(), [](const QString &word) {
        return !looksLikeTarget(word) && !looksLikeTargetName(word);
    });
}

QString titleOf(const Ground &ground)
{
    const QString target = targetText(ground.link.target());
    return ground.link.project.isEmpty()
               ? target
               : QStringLiteral("%1, %2").arg(QFileInfo(ground.link.project).fileName(), target);
}

void takeGround(Ground &ground, CommandLine &line)
{
    if (namesValues(line) || line.isGiven("points")) {
        const AddressedPoints addressed = addressedPoints(line);
        ground.link = addressed.link;
        ground.tags = addressed.tags;
        ground.readings = valueReadingsOf(addressed.points);
        return;
    }
    QStringList words = line.words();
    ground.link = linkSettings(line, words);
    if (ground.link.project.isEmpty() || !line.isValid())
        return;
    const Result<> project = takeProject(ground, line);
    if (!project)
        line.addError(project.errorText());
}

void addWindowOptions(CommandLine &line)
{
    line.addOptions({
        {QStringLiteral("interval"),
         QStringLiteral("Seconds from the beginning of a round to the next (default 1)."),
         QStringLiteral("SECONDS"), QStringLiteral("1")},
        {QStringLiteral("workspace"), QStringLiteral("Open a workspace that was saved."),
         QStringLiteral("FILE")},
        {QStringLiteral("demo"),
         QStringLiteral(
             "Show everything at work on a slave of the program's own, with moving values and faults.")},
        {QStringLiteral("seed"), QStringLiteral("Same seed, same demo (default 1)."),
         QStringLiteral("NUMBER"), QStringLiteral("1")},
        {QStringLiteral("dark"), QStringLiteral("Draw light on dark.")},
        {{QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Show the version.")},
    });
    line.addOptions(itemOptions());
    line.addOptions(pointOptions());
    line.addOptions({itemCountOption()});
    line.addOptions(planOptions());
    line.addOptions(linkOptions());
}

} // namespace

QString windowHelp()
{
    CommandLine line(Texts);
    addWindowOptions(line);
    return line.helpText(QStringLiteral("driverdesk"));
}

Result<WindowOptions> windowOptionsOf(const QStringList &arguments)
{
    CommandLine line(Texts);
    addWindowOptions(line);
    line.take(arguments);
    WindowOptions options;
    options.opening = openingPart(arguments);
    options.workspace = line.text("workspace");
    options.isDemo = line.isSet("demo");
    options.isDark = line.isSet("dark");
    options.seed = line.isValid() ? line.number("seed", 0, INT_MAX) : 1;
    line.expectWith(options.isDemo, "--demo", {"seed"});
    const bool hasMore =
        line.isValid() && (namesValues(line) || line.isSet("points") || line.isSet("project"));
    if (options.isDemo && hasMore)
        line.addError(QStringLiteral("--demo brings its own points"));
    if (line.isValid()) {
        options.ground.interval = line.milliseconds("interval", 0, MaxInterval);
        takeGround(options.ground, line);
        options.ground.plan = planOptionsOf(line);
        options.ground.title = titleOf(options.ground);
    }
    if (!line.isValid())
        return Error{line.errorText()};
    return options;
}
