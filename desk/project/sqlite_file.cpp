#include "desk/project/sqlite_file.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QUuid>

SqliteFile::SqliteFile(const QString &path, const char *options) : m_name(QUuid::createUuid().toString())
{
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
    database.setDatabaseName(path);
    database.setConnectOptions(QLatin1String(options));
    if (!database.open())
        m_problem = database.lastError().text();
}

SqliteFile::~SqliteFile()
{
    QSqlDatabase::database(m_name, false).close();
    QSqlDatabase::removeDatabase(m_name);
}

void SqliteFile::run(const QString &statement, const QVariantList &values)
{
    select(statement, values, [](const QSqlQuery &) {});
}

void SqliteFile::select(const QString &statement, const QVariantList &values,
                        const std::function<void(const QSqlQuery &)> &takeRow)
{
    if (!m_problem.isEmpty())
        return;
    QSqlQuery query(QSqlDatabase::database(m_name, false));
    query.setForwardOnly(true);
    bool isGood = query.prepare(statement);
    for (const QVariant &value : values)
        query.addBindValue(value);
    isGood = isGood && query.exec();
    while (isGood && query.next())
        takeRow(query);
    if (query.lastError().isValid())
        m_problem = query.lastError().text();
}
