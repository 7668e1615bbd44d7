#pragma once

#include "desk/items/items.h"

#include <QStringList>

/// The bit addresses that byte items lie on, as tags of a project: "1-DO17". The driver reads such bytes only
/// where the project has tags. Empty for all other items.
QStringList neededTags(const Items &items, int station);
