#include "tests/doubles/project_database.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

#include <stdexcept>

namespace
{

QString quoted(QString text)
{
    return QLatin1Char('\'') + text.replace(QLatin1Char('\''), QLatin1String("''")) + QLatin1Char('\'');
}

void require(bool succeeded, const QSqlError &error)
{
    if (!succeeded)
        throw std::runtime_error(error.text().toUtf8().constData());
}

QString tagRow(const QString &address, int connectorId)
{
    return QLatin1String("INSERT INTO custom_tag_table VALUES (") + quoted(address) + QLatin1String(", ") +
           QString::number(connectorId) + QLatin1Char(')');
}

QStringList tables()
{
    return QStringList() << QLatin1String("CREATE TABLE LINK (LINKID, HMIPORT)")
                         << QLatin1String("CREATE TABLE NODE (LINKID, STATIONID, ISDEFAULT, IP, PORT)")
                         << QLatin1String("CREATE TABLE custom_tag_table (address, connector_id)");
}

} // namespace

ProjectDatabase::ProjectDatabase()
{
    remove();
    makeFolders();
    execute(tables());
}

ProjectDatabase::ProjectDatabase(const QStringList &tags, int station, int hmiPort) : ProjectDatabase()
{
    addLink(1, hmiPort);
    addNode(1, station, true);
    addTags(tags, 1);
}

ProjectDatabase::~ProjectDatabase()
{
    remove();
}

QString ProjectDatabase::path()
{
    return QCoreApplication::applicationDirPath() + QLatin1String("/compile/database/database");
}

void ProjectDatabase::makeFolders()
{
    QDir(QCoreApplication::applicationDirPath()).mkpath(QLatin1String("compile/database"));
}

void ProjectDatabase::remove()
{
    QFile::remove(path());
    QDir(QCoreApplication::applicationDirPath()).rmpath(QLatin1String("compile/database"));
}

void ProjectDatabase::addLink(int linkId, int hmiPort)
{
    execute(QString::fromLatin1("INSERT INTO LINK VALUES (%1, %2)").arg(linkId).arg(hmiPort));
}

void ProjectDatabase::addNode(int linkId, int station, bool isDefault, const QString &ip, int port)
{
    const QStringList values = QStringList()
                               << QString::number(linkId) << QString::number(station)
                               << QString::number(isDefault ? 1 : 0) << quoted(ip) << QString::number(port);
    execute(QLatin1String("INSERT INTO NODE VALUES (") + values.join(QLatin1String(", ")) + QLatin1Char(')'));
}

void ProjectDatabase::addTags(const QStringList &addresses, int connectorId)
{
    QStringList rows;
    for (int i = 0; i < addresses.size(); ++i)
        rows << tagRow(addresses.at(i), connectorId);
    execute(rows);
}

void ProjectDatabase::execute(const QString &statement)
{
    execute(QStringList(statement));
}

void ProjectDatabase::execute(const QStringList &statements)
{
    const QString name = QLatin1String("project database of the test");
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QLatin1String("QSQLITE"), name);
        database.setDatabaseName(path());
        require(database.open(), database.lastError());
        QSqlQuery query(database);
        query.exec(QLatin1String("PRAGMA synchronous = OFF"));
        database.transaction();
        for (int i = 0; i < statements.size(); ++i)
            require(query.exec(statements.at(i)), query.lastError());
        require(database.commit(), database.lastError());
    }
    QSqlDatabase::removeDatabase(name);
}
