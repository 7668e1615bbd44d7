#include "desk/project/project.h"

std::optional<Project::Node> defaultNodeAt(const Project &project, int hmiPort)
{
    for (const Project::Link &link : project.links) {
        for (const Project::Node &node : project.nodes) {
            if (link.hmiPort == hmiPort && node.link == link.id && node.isDefault)
                return node;
        }
    }
    return std::nullopt;
}

QStringList tagsOfLink(const Project &project, int link)
{
    QStringList tags;
    for (const Project::Tag &tag : project.tags) {
        if (tag.link == link)
            tags += tag.address;
    }
    tags.removeDuplicates();
    return tags;
}
