#include "bench/support/projects.h"

#include "bench/support/canned_channel.h"
#include "bench/support/transactions.h"
#include "drivers/tools/project_lookup.h"
#include "host/driver_interface.h"
#include "tests/doubles/command.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

#include <stdexcept>
#include <vector>

void useProject(const QString &project)
{
    QFile::remove(GetDatabaseName());
    const QFileInfo file(project);
    if (!file.exists() || !QFile::link(file.absoluteFilePath(), GetDatabaseName()))
        throw std::runtime_error("no project " + project.toStdString());
}

void load(DriverInterface &driver, AbstractDeviceInterface &channel)
{
    driver.read(&channel, makeCommand(ByteItem, QLatin1String("DI1"), 0));
    if (driver.hasError())
        throw std::runtime_error(driver.getLastError().toStdString());
}

namespace
{

struct Expected {
    int station;
    QString area;
    int addresses;
};

// Runs the work on a connection to the project that is closed afterwards.
template <typename Work>
void withProject(const QString &project, Work work)
{
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), project);
        database.setDatabaseName(project);
        database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        database.open();
        QSqlQuery query(database);
        query.setForwardOnly(true);
        work(query);
    }
    QSqlDatabase::removeDatabase(project);
}

std::vector<Expected> expectedOf(const QString &project)
{
    std::vector<Expected> all;
    withProject(project, [&](QSqlQuery &query) {
        query.exec(QStringLiteral("SELECT station, area, addresses FROM expected"));
        while (query.next())
            all.push_back({query.value(0).toInt(), query.value(1).toString(), query.value(2).toInt()});
    });
    return all;
}

} // namespace

void checkLoad(DriverInterface &driver, const QString &project)
{
    const int wholeArea = 65536 / 8;
    for (const Expected &expected : expectedOf(project)) {
        CannedChannel channel;
        channel.setStation(expected.station);
        driver.read(&channel, makeCommand(ByteItem, expected.area + QLatin1Char('1'), wholeArea));
        if (driver.hasError() || channel.requestedItems() != expected.addresses)
            throw std::runtime_error("wrong addresses of station " + std::to_string(expected.station));
    }
}

int usedAddresses(const QString &project)
{
    int sum = 0;
    for (const Expected &expected : expectedOf(project))
        sum += expected.addresses;
    return sum;
}

qint64 queryEveryText(const QString &project)
{
    qint64 characters = 0;
    withProject(project, [&](QSqlQuery &query) {
        query.exec(QStringLiteral("SELECT address FROM custom_tag_table WHERE connector_id = 1"));
        while (query.next())
            characters += query.value(0).toString().size();
    });
    return characters;
}
