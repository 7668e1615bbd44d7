#include "desk/project/project_file.h"

#include "desk/project/sqlite_file.h"
#include "desk/readable_file.h"

#include <QUuid>

namespace
{

const char *const Tables[] = {
    "CREATE TABLE LINK (LINKID INTEGER PRIMARY KEY, HMIPORT INTEGER NOT NULL)",
    "CREATE TABLE NODE (LINKID INTEGER, STATIONID INTEGER, ISDEFAULT INTEGER, IP TEXT, PORT INTEGER)",
    "CREATE TABLE custom_tag_table (address TEXT NOT NULL, connector_id INTEGER NOT NULL)",
};

void insertProject(SqliteFile &database, const Project &project)
{
    for (const char *table : Tables)
        database.run(QLatin1String(table));
    database.run(QStringLiteral("BEGIN"));
    for (const Project::Link &link : project.links)
        database.run(QStringLiteral("INSERT INTO LINK VALUES (?, ?)"), {link.id, link.hmiPort});
    for (const Project::Node &node : project.nodes)
        database.run(QStringLiteral("INSERT INTO NODE VALUES (?, ?, ?, ?, ?)"),
                     {node.link, node.station, node.isDefault ? 1 : 0, node.host, node.port});
    for (const Project::Tag &tag : project.tags)
        database.run(QStringLiteral("INSERT INTO custom_tag_table VALUES (?, ?)"), {tag.address, tag.link});
    database.run(QStringLiteral("COMMIT"));
}

// Where a node is, if the table has it: panels of one node a link leave these columns out, and the driver
// does not ask for them.
QString endpointColumns(SqliteFile &database)
{
    QStringList columns;
    database.select(QStringLiteral("PRAGMA table_info(NODE)"), {},
                    [&](const QSqlQuery &row) { columns += row.value(1).toString().toUpper(); });
    QStringList expressions;
    for (const QString &name : {QStringLiteral("IP"), QStringLiteral("PORT")})
        expressions += columns.contains(name) ? name : QStringLiteral("NULL");
    return expressions.join(QStringLiteral(", "));
}

} // namespace

Result<> writeProjectFile(const QString &path, const Project &project)
{
    const QString unfinished =
        path + QUuid::createUuid().toString(QUuid::WithoutBraces).prepend(QLatin1Char('.'));
    QString problem;
    {
        SqliteFile database(unfinished);
        insertProject(database, project);
        problem = database.problem();
    }
    // rename() replaces in one step, which QFile::rename() does not.
    if (problem.isEmpty() &&
        std::rename(QFile::encodeName(unfinished).constData(), QFile::encodeName(path).constData()) == 0)
        return {};
    if (problem.isEmpty())
        problem = qt_error_string();
    QFile::remove(unfinished);
    return Error{QStringLiteral("cannot write the project database %1: %2").arg(path, problem)};
}

Result<Project> readProjectFile(const QString &path)
{
    QFile file(path);
    const Result<> opened = openForReading(file);
    if (!opened)
        return opened.error();
    if (!isSqlite(file))
        return Error{path + QStringLiteral(": it is no SQLite database")};
    Project project;
    SqliteFile database(path, ReadOnly);
    database.select(QStringLiteral("SELECT LINKID, HMIPORT FROM LINK"), {}, [&](const QSqlQuery &row) {
        project.links.append({row.value(0).toInt(), row.value(1).toInt()});
    });
    database.select(
        QStringLiteral("SELECT LINKID, STATIONID, ISDEFAULT, %1 FROM NODE").arg(endpointColumns(database)),
        {}, [&](const QSqlQuery &row) {
            project.nodes.append({row.value(0).toInt(), row.value(1).toInt(), row.value(2).toInt() == 1,
                                  row.value(3).toString(), static_cast<quint16>(row.value(4).toUInt())});
        });
    database.select(QStringLiteral("SELECT connector_id, address FROM custom_tag_table"), {},
                    [&](const QSqlQuery &row) {
                        project.tags.append({row.value(0).toInt(), row.value(1).toString()});
                    });
    if (database.problem().isEmpty())
        return project;
    return Error{QStringLiteral("%1: %2").arg(path, database.problem())};
}
