#pragma once

#include "desk/link/link_settings.h"
#include "desk/result.h"

#include <QStringList>

/// Puts the project database that the driver is to load at \a path: a copy of the settings' project, or one
/// made of the settings' link with these tags.
Result<> makeLinkProject(const LinkSettings &settings, const QStringList &tags, const QString &path);
