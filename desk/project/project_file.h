#pragma once

#include "desk/project/project.h"
#include "desk/result.h"

/// Writes a new project database; an old file at \a path is replaced once the new one is whole.
Result<> writeProjectFile(const QString &path, const Project &project);

/// Everything that a project database holds of a project. The file is opened read-only.
Result<Project> readProjectFile(const QString &path);
