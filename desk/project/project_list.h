#pragma once

#include "desk/project/project.h"
#include "desk/result.h"

/// Reads a project from a list, one thing a line, its fields between blanks or commas:
///
///     link 1 ETHERNET                  an id, and the device text of the port
///     node 1 5 default 10.0.0.5:502    a link, a station, perhaps "default", perhaps where it is
///     tag 1 HR100                      a link and an address, "2-DO5" for another station than the default
///     one
///
/// "#" starts a comment. The error names the line and what is wrong with it.
Result<Project> parseProjectList(const QString &text);

/// The list that says what a project holds.
QStringList projectListOf(const Project &project);
