#include "desk/startup/link_project.h"

#include "desk/project/project_file.h"
#include "desk/readable_file.h"
#include "drivers/tools/project_lookup.h"

namespace
{

Project projectOf(const ChannelSettings &channel, const QStringList &tags)
{
    const int link = 1;
    Project project;
    project.links = {{link, DevStrToHmiPort(channel.device)}};
    project.nodes = {{link, channel.station, true, channel.host, channel.port}};
    for (const QString &tag : tags)
        project.tags.append({link, tag});
    return project;
}

} // namespace

Result<> makeLinkProject(const LinkSettings &settings, const QStringList &tags, const QString &path)
{
    if (settings.project.isEmpty())
        return writeProjectFile(path, projectOf(settings.channel, tags));
    QFile file(settings.project);
    const Result<> opened = openForReading(file);
    if (!opened)
        return opened.error();
    if (file.copy(path))
        return {};
    return Error{
        QStringLiteral("cannot copy the project database %1: %2").arg(settings.project, file.errorString())};
}
