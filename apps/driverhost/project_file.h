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

/// Writes a new project database; an old file at \a path is replaced once the new one is whole.
bool writeProjectFile(const QString &path, const Project &project, QString &error);

/// Everything that a project database holds of the above; on failure \a error says why. The file is opened
/// read-only.
std::optional<Project> readProjectFile(const QString &path, QString &error);
