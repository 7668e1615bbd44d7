#pragma once

#include "host/communicator_command.h"

#include <QString>

class AbstractDeviceInterface;
class DriverInterface;

/// The project databases that make_projects.py leaves in a folder.

/// Puts \a project where the driver of this program looks for its database.
void useProject(const QString &project);

/// What the driver does with its first command: opens the project and loads the used addresses. Throws when
/// it reports an error.
void load(DriverInterface &driver, AbstractDeviceInterface &channel);

/// Throws when the bits that the driver takes for used are not as many, in each area of each station, as the
/// project says.
void checkLoad(DriverInterface &driver, const QString &project);
int usedAddresses(const QString &project);

/// What the driver's load is compared with: a forward-only query that touches every text. Returns the
/// characters.
qint64 queryEveryText(const QString &project);
