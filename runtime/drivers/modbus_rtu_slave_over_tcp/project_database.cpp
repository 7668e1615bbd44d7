#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

#include "drivers/modbus_rtu_slave_over_tcp/project/used_bits.h"
#include "drivers/tools/project_lookup.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QThread>
#include <QVariant>

namespace
{

// SQLite looks into a file only when it is first read, so a file that is no database would open like one. It
// takes an empty file for an empty database. A query would find out as well, but wait on a database that
// is locked. A pipe or a device in its place would wait as well, for whoever is at its other end.
bool isDatabaseFile(const QString &path)
{
    const QByteArray magic("SQLite format 3", 16);
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray header = file.read(magic.size());
    return header.isEmpty() || header == magic;
}

// Qt 4.8 leaks a handle with every open that fails, so a connection is only opened again when its file is
// there.
bool canBeOpened(const QString &connectionName)
{
    const QSqlDatabase database = QSqlDatabase::database(connectionName, false);
    return database.isOpen() || isDatabaseFile(database.databaseName());
}

} // namespace

bool DriverModbusRtuSlaveOverTcp::createDBConnection()
{
    if (QSqlDatabase::contains(connectionName))
        return true;
    QSqlDatabase database = registerConnection();
    return isDatabaseFile(database.databaseName()) && database.open();
}

QSqlDatabase DriverModbusRtuSlaveOverTcp::registerConnection()
{
    QSqlDatabase database = QSqlDatabase::addDatabase(QLatin1String("QSQLITE"), connectionName);
    database.setDatabaseName(GetDatabaseName());
    database.setConnectOptions(QLatin1String("QSQLITE_OPEN_READONLY"));
    ownConnection = database.driver();
    return database;
}

// From Qt 5 on a connection serves only the thread that registered it. What is left of an earlier load in
// another thread is registered anew; a connection of another object, which may have drawn the same name, is
// not touched.
void DriverModbusRtuSlaveOverTcp::bringConnectionHere()
{
    if (ownConnection.isNull() || ownConnection->thread() == QThread::currentThread())
        return;
    QSqlDatabase::removeDatabase(connectionName);
    registerConnection();
}

bool DriverModbusRtuSlaveOverTcp::readDB(const QString &devStr)
{
    if (dbLoaded)
        return true;
    bringConnectionHere();
    if (!dbConnected) {
        dbConnected = createDBConnection();
        if (!dbConnected)
            return fail("can not open database");
    }

    const int hmiPort = DevStrToHmiPort(devStr);
    int linkId = 0;
    unsigned char defaultStation = 0;
    if (!canBeOpened(connectionName) ||
        !GetLinkIdAndDefaultStationId(connectionName, hmiPort, linkId, defaultStation))
        return fail("failed to get default station id");
    if (!initValidBitAddressesMap(linkId, defaultStation))
        return fail("failed to initialize valid bit addresses table");

    dbLoaded = true;
    QSqlDatabase::database(connectionName, true).close();
    dbConnected = false;
    return true;
}

bool DriverModbusRtuSlaveOverTcp::initValidBitAddressesMap(int connectorId, unsigned char defaultStation)
{
    QSqlQuery query(QSqlDatabase::database(connectionName, true));
    query.setForwardOnly(true);
    query.exec(
        QString::fromLatin1("SELECT address FROM custom_tag_table WHERE connector_id = %1").arg(connectorId));
    if (!query.isActive())
        return false;

    UsedBits used(defaultStation);
    while (query.next())
        used.add(query.value(0).toString());
    // A file that ends within the table: the addresses after its end would count as unused.
    if (query.lastError().isValid())
        return false;
    validBitAddressesMap = used.sortedByStation();
    return true;
}
