#include "tests/stateful/world.h"

#include "tests/doubles/command.h"
#include "tests/doubles/project_database.h"

#include <QSqlDatabase>

World::World() : line(AreaSize)
{
    line.errorText = QLatin1String(LineText);
    putProjectFile(ProjectFile::Missing);
    startDriver();
}

World::~World()
{
    driver.reset();
    ProjectDatabase::remove();
    const QStringList connections = QSqlDatabase::connectionNames();
    for (const QString &name : connections)
        QSqlDatabase::removeDatabase(name);
}

DriverModel::Outcome World::transfer(const Transfer &command)
{
    DriverModel::Outcome outcome = {QByteArray(), false, std::string()};
    const CommunicatorCommand given =
        makeCommand(command.dataType, QString::fromStdString(command.address.text), command.count);
    if (command.isWrite)
        outcome.isWritten = driver->write(&line, given, command.data);
    else
        outcome.data = driver->read(&line, given);
    if (driver->hasError())
        outcome.error = driver->getLastError().toStdString();
    return outcome;
}

void World::startDriver()
{
    driver = std::make_unique<DriverModbusRtuSlaveOverTcp>();
}
