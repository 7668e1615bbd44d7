#include "support/projects.h"

#include "drivers/tools/command_data.h"
#include "drivers/tools/project_lookup.h"
#include "host/driver_interface.h"
#include "support/transactions.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

#include <stdexcept>

void useProject(const QString &project)
{
    QFile::remove(GetDatabaseName());
    if (!QFile::exists(project) || !QFile::link(project, GetDatabaseName()))
        throw std::runtime_error("no project " + project.toStdString());
}

void load(DriverInterface &driver, AbstractDeviceInterface &channel)
{
    driver.read(&channel, command(ByteItem, 0, "DI1"));
    if (driver.hasError())
        throw std::runtime_error(driver.getLastError().toStdString());
}

qint64 queryEveryText(const QString &project)
{
    qint64 characters = 0;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), project);
        database.setDatabaseName(project);
        database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        database.open();
        QSqlQuery query(database);
        query.setForwardOnly(true);
        query.exec(QStringLiteral("SELECT address FROM custom_tag_table WHERE connector_id = 1"));
        while (query.next())
            characters += query.value(0).toString().size();
    }
    QSqlDatabase::removeDatabase(project);
    return characters;
}
