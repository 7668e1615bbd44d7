#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// What the driver reports when it cannot load a project.
/// @{
const char CanNotOpen[] = "can not open database";
const char NoStation[] = "failed to get default station id";
const char NoAddresses[] = "failed to initialize valid bit addresses table";
/// @}

/// The project database of the test program: a real SQLite file at the place where a driver looks for it.
/// Made with its tables, and removed, by the object.
class ProjectDatabase
{
public:
    /// Empty tables LINK, NODE and custom_tag_table.
    ProjectDatabase();
    /// One link, number 1, on \a hmiPort with the default station and these tags.
    ProjectDatabase(const QStringList &tags, int station, int hmiPort = EthernetPort);
    ~ProjectDatabase();

    ProjectDatabase(const ProjectDatabase &) = delete;
    ProjectDatabase &operator=(const ProjectDatabase &) = delete;

    /// The port that device texts such as "ETHERNET" stand for.
    static const int EthernetPort = 2000;

    /// compile/database/database beside the program.
    static QString path();
    /// Makes the folders that lead to path(), without a file.
    static void makeFolders();
    /// Removes the file, if any, and the folders, as far as nothing else is in them.
    static void remove();

    void addLink(int linkId, int hmiPort);
    void addNode(int linkId, int station, bool isDefault, const QString &ip = QLatin1String("127.0.0.1"),
                 int port = 502);
    void addTags(const QStringList &addresses, int connectorId);
    /// Any statement on the file, which may be missing or empty before. Throws std::runtime_error when it
    /// fails.
    static void execute(const QString &statement);
    static void execute(const QStringList &statements);
};
