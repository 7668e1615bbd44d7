#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/// What a driver needs of a panel project: its links, their nodes and the addresses of their tags.
struct Project {
    struct Link {
        int id = 0;
        int hmiPort = 0;
    };
    struct Node {
        int link = 0;
        int station = 1;
        bool isDefault = true;
        QString host;
        quint16 port = 0;
    };
    struct Tag {
        int link = 0;
        QString address;
    };

    QList<Link> links;
    QList<Node> nodes;
    QList<Tag> tags;
};

/// The default node of the link that the driver finds for an HMI port; nothing when there is none.
std::optional<Project::Node> defaultNodeAt(const Project &project, int hmiPort);

/// The addresses of a link's tags, each once.
QStringList tagsOfLink(const Project &project, int link);
