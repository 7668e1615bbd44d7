#include "fuzz/support/project_file.h"

#include "fuzz/support/check.h"

#include "drivers/tools/project_lookup.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

namespace fuzz
{

namespace
{

const char *const WriterConnection = "project writer";

void run(QSqlQuery &query, const QString &statement)
{
    FUZZ_CHECK(query.exec(statement));
}

QSqlDatabase writer()
{
    return QSqlDatabase::database(QLatin1String(WriterConnection));
}

} // namespace

QString projectPath()
{
    return GetDatabaseName();
}

void writeProject(const QStringList &tags)
{
    QFile::remove(projectPath());
    QSqlDatabase database =
        QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QLatin1String(WriterConnection));
    database.setDatabaseName(projectPath());
    FUZZ_CHECK(database.open());
    QSqlQuery query(database);
    run(query, QStringLiteral("PRAGMA journal_mode = OFF"));
    run(query, QStringLiteral("PRAGMA synchronous = OFF"));
    run(query, QStringLiteral("CREATE TABLE LINK (LINKID INTEGER, HMIPORT INTEGER)"));
    run(query, QStringLiteral("CREATE TABLE NODE (LINKID INTEGER, STATIONID INTEGER, ISDEFAULT INTEGER, "
                              "IP TEXT, PORT INTEGER)"));
    run(query, QStringLiteral("CREATE TABLE custom_tag_table (address TEXT, connector_id INTEGER)"));
    run(query, QStringLiteral("INSERT INTO LINK VALUES (7, 1000)"));
    run(query, QStringLiteral("INSERT INTO NODE VALUES (7, %1, 1, '127.0.0.1', 502)").arg(ProjectStation));
    replaceTags(tags);
}

void replaceTags(const QStringList &tags)
{
    QSqlDatabase database = writer();
    database.transaction();
    QSqlQuery query(database);
    run(query, QStringLiteral("DELETE FROM custom_tag_table"));
    FUZZ_CHECK(query.prepare(QStringLiteral("INSERT INTO custom_tag_table VALUES (?, 7)")));
    for (const QString &tag : tags) {
        query.addBindValue(tag);
        FUZZ_CHECK(query.exec());
    }
    FUZZ_CHECK(database.commit());
}

void writeProjectBytes(const QByteArray &bytes)
{
    QFile file(projectPath());
    // A file that is emptied first makes some file systems wait for the disk.
    FUZZ_CHECK(file.open(QIODevice::ReadWrite));
    FUZZ_CHECK(file.write(bytes) == bytes.size());
    FUZZ_CHECK(file.resize(bytes.size()));
}

void forgetDriverConnections()
{
    for (const QString &name : QSqlDatabase::connectionNames())
        if (name != QLatin1String(WriterConnection))
            QSqlDatabase::removeDatabase(name);
}

} // namespace fuzz
