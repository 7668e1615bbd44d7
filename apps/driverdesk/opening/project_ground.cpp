#include "apps/driverdesk/opening/project_ground.h"

#include "apps/driverhost/console/item_options.h"
#include "desk/plan/tag_readings.h"
#include "desk/project/project_file.h"
#include "drivers/tools/project_lookup.h"

namespace
{

Result<> takeEndpoint(LinkSettings &link, const Project::Node &node, const CommandLine &line)
{
    if (!line.isGiven("station"))
        link.channel.station = node.station & 0xFF;
    if (line.isGiven("host"))
        return {};
    if (node.host.isEmpty() || (node.port == 0 && !line.isGiven("port")))
        return Error{
            QStringLiteral("%1: the default node of link %2 has no endpoint; expected a target besides, "
                           "such as rtutcp://192.168.0.10:502")
                .arg(link.project, QString::number(node.link))};
    link.channel.host = node.host;
    if (!line.isGiven("port"))
        link.channel.port = node.port;
    return {};
}

} // namespace

Result<> takeProject(Ground &ground, CommandLine &line)
{
    LinkSettings &link = ground.link;
    const Result<Project> project = readProjectFile(link.project);
    if (!project)
        return project.error();
    const std::optional<Project::Node> node = defaultNodeAt(*project, DevStrToHmiPort(link.channel.device));
    if (!node)
        return Error{QStringLiteral("%1 has no link with a default node for %2")
                         .arg(link.project, link.channel.device)};
    Result<> endpoint = takeEndpoint(link, *node, line);
    if (!endpoint)
        return endpoint;
    const ItemOptions options = itemOptionsOf(line);
    const ItemKind kind = options.kind.value_or(options.form == ValueForm::Float ? DoubleWordItem : WordItem);
    ground.readings = tagReadingsOf(tagsOfLink(*project, node->link), kind, options.form).readings;
    if (ground.readings.empty())
        return Error{QStringLiteral("%1: link %2 has no tag that can be read; expected some such as HR100")
                         .arg(link.project, QString::number(node->link))};
    return {};
}
