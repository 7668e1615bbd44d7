#include "desk/project/project_why.h"

#include "desk/items/number_text.h"
#include "desk/project/sqlite_file.h"
#include "drivers/tools/project_lookup.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace
{

const char NoDatabase[] = "can not open database";
const char NoStation[] = "failed to get default station id";
const char NoTags[] = "failed to initialize valid bit addresses table";

const int MaxShownRows = 20;

// What the driver gets out of a file.
struct Found {
    bool hasLink = false;
    int link = 0;
    unsigned char station = 0;
    bool hasTags = false;
};

// Asks as the driver asks, so that the answer is the driver's whatever the file is like.
Found askAsTheDriver(const QString &path, int hmiPort)
{
    SqliteFile database(path, ReadOnly);
    Found found;
    found.hasLink =
        GetLinkIdAndDefaultStationId(database.connectionName(), hmiPort, found.link, found.station);
    if (!found.hasLink)
        return found;
    database.run(
        QStringLiteral("SELECT address FROM custom_tag_table WHERE connector_id = %1").arg(found.link));
    found.hasTags = database.problem().isEmpty();
    return found;
}

// What the driver reads of a table, for people to compare.
struct TableUse {
    const char *name;
    QStringList columns;
    QString condition; // in words
    QString matching;  // a statement that counts the rows for which the condition holds
};

TableUse linkTable(int hmiPort)
{
    return {"LINK",
            {"LINKID", "HMIPORT"},
            QStringLiteral("with HMIPORT = %1").arg(hmiPort),
            QStringLiteral("SELECT COUNT(*) FROM LINK WHERE HMIPORT = %1").arg(hmiPort)};
}

TableUse nodeTable(int hmiPort)
{
    return {"NODE",
            {"LINKID", "STATIONID", "ISDEFAULT"},
            QStringLiteral("default nodes (ISDEFAULT = 1) of such a link"),
            QStringLiteral("SELECT COUNT(*) FROM LINK, NODE WHERE LINK.HMIPORT = %1 AND "
                           "NODE.LINKID = LINK.LINKID AND NODE.ISDEFAULT = 1")
                .arg(hmiPort)};
}

TableUse tagTable(int link)
{
    return {"custom_tag_table",
            {"address", "connector_id"},
            QStringLiteral("with connector_id = %1").arg(link),
            QStringLiteral("SELECT COUNT(*) FROM custom_tag_table WHERE connector_id = %1").arg(link)};
}

class Explanation
{
public:
    LoadReport explain(const QString &place, const QString &device);

private:
    void step(const QString &text) { m_report.steps += text; }
    LoadReport fail(const char *table, const char *firstText, const char *laterText);
    QString databaseIn(const QString &place);
    bool canOpen();
    bool canReadSchema();
    int showTable(const TableUse &table);
    void showRows(const TableUse &table);
    const char *showLinkAndNodes(int hmiPort);

    QString m_path;
    LoadReport m_report;
};

LoadReport Explanation::explain(const QString &place, const QString &device)
{
    m_path = databaseIn(place);
    if (!canOpen())
        return fail("", NoDatabase, NoStation);
    const int hmiPort = DevStrToHmiPort(device);
    step(QStringLiteral("device text \"%1\" stands for HMI port %2").arg(device, QString::number(hmiPort)));
    const Found found = askAsTheDriver(m_path, hmiPort);
    if (!found.hasLink && !canReadSchema())
        return fail("", NoStation, NoStation);
    const char *const faultyTable = showLinkAndNodes(hmiPort);
    if (!found.hasLink)
        return fail(faultyTable, NoStation, NoStation);
    step(QStringLiteral("link %1, default station %2")
             .arg(QString::number(found.link), QString::number(found.station)));
    showTable(tagTable(found.link));
    if (!found.hasTags)
        return fail("custom_tag_table", NoTags, NoTags);
    step(QStringLiteral("the driver loads this project"));
    return m_report;
}

LoadReport Explanation::fail(const char *table, const char *firstText, const char *laterText)
{
    m_report.table = QLatin1String(table);
    m_report.firstText = QLatin1String(firstText);
    m_report.laterText = QLatin1String(laterText);
    if (!m_report.table.isEmpty())
        step(QStringLiteral("table %1 is at fault").arg(m_report.table));
    QString text = QStringLiteral("the driver says \"%1\"").arg(m_report.firstText);
    if (m_report.laterText != m_report.firstText)
        text += QStringLiteral(", from the second time on \"%1\"").arg(m_report.laterText);
    step(text);
    return m_report;
}

// The driver's rule, folder by folder.
QString Explanation::databaseIn(const QString &place)
{
    if (!QFileInfo(place).isDir()) {
        step(QStringLiteral("database %1, given as a file").arg(QFileInfo(place).absoluteFilePath()));
        return place;
    }
    QDir folder(place);
    step(QStringLiteral("the program's folder is %1").arg(folder.absolutePath()));
    for (const QString &name : {COMPILE_PATH, DATABASE_PATH}) {
        const bool isThere = folder.cd(name);
        step(QStringLiteral("%1 a folder \"%2\" in it")
                 .arg(isThere ? QStringLiteral("there is") : QStringLiteral("there is not"), name));
    }
    QString path = folder.absoluteFilePath(QStringLiteral("database"));
    step(QStringLiteral("so the database is %1").arg(path));
    return path;
}

// The driver takes an empty file for an empty database, as SQLite does.
bool Explanation::canOpen()
{
    QFile file(m_path);
    const QFileInfo info(m_path);
    if (info.exists() && !info.isFile() && !info.isDir()) {
        step(QStringLiteral("it is a device or a pipe and no file"));
        return false;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        step(info.exists() ? QStringLiteral("it cannot be opened: ") + file.errorString()
                           : QStringLiteral("there is no such file"));
        return false;
    }
    if (!isSqlite(file)) {
        step(QStringLiteral("it is no SQLite database"));
        return false;
    }
    step(file.size() == 0
             ? QStringLiteral("the file is there and empty, which SQLite takes for a database without "
                              "tables")
             : QStringLiteral("the file is there and is an SQLite database of %1 bytes").arg(file.size()));
    return true;
}

// Whether the file as a whole can be read: it is not locked, and its list of tables is no nonsense.
bool Explanation::canReadSchema()
{
    SqliteFile database(m_path, ReadOnlyAtOnce);
    database.run(QStringLiteral("SELECT COUNT(*) FROM sqlite_master"));
    if (database.problem().isEmpty())
        return true;
    step(QStringLiteral("the file cannot be read: ") + database.problem());
    return false;
}

// Which table it is due to that the driver finds no link; "" when both have what it takes.
const char *Explanation::showLinkAndNodes(int hmiPort)
{
    const TableUse links = linkTable(hmiPort);
    const int matchingLinks = showTable(links);
    if (matchingLinks < 0)
        return links.name;
    const TableUse nodes = nodeTable(hmiPort);
    const int matchingNodes = showTable(nodes);
    if (matchingNodes > 1)
        step(QStringLiteral("  more than one: the driver takes the first row that SQLite gives"));
    if (matchingLinks == 0)
        return links.name;
    return matchingNodes > 0 ? "" : nodes.name;
}

// How many rows the driver can use; -1 when the table cannot be read to its end.
int Explanation::showTable(const TableUse &table)
{
    int rows = 0;
    int matching = 0;
    SqliteFile database(m_path, ReadOnlyAtOnce);
    database.select(
        QStringLiteral("SELECT %1 FROM %2").arg(table.columns.join(QLatin1String(", ")), table.name), {},
        [&](const QSqlQuery &) { ++rows; });
    database.select(table.matching, {}, [&](const QSqlQuery &row) { matching = row.value(0).toInt(); });
    if (!database.problem().isEmpty()) {
        step(
            QStringLiteral("table %1 cannot be read: %2").arg(QLatin1String(table.name), database.problem()));
        return -1;
    }
    step(QStringLiteral("table %1: %2, %3 of them %4")
             .arg(QLatin1String(table.name), counted(rows, "row"), QString::number(matching),
                  table.condition));
    if (matching == 0)
        showRows(table);
    return matching;
}

// The rows as SQLite writes values, so that a text that looks like a number is seen to be one.
void Explanation::showRows(const TableUse &table)
{
    QStringList values;
    for (const QString &column : table.columns)
        values += QStringLiteral("'%1 ' || quote(%1)").arg(column);
    SqliteFile database(m_path, ReadOnlyAtOnce);
    database.select(QStringLiteral("SELECT %1 FROM %2 LIMIT %3")
                        .arg(values.join(QStringLiteral(" || ', ' || ")), QLatin1String(table.name),
                             QString::number(MaxShownRows)),
                    {}, [&](const QSqlQuery &row) { step(QStringLiteral("  ") + row.value(0).toString()); });
}

} // namespace

LoadReport explainLoad(const QString &place, const QString &device)
{
    return Explanation().explain(place, device);
}
