#pragma once

#include "desk/result.h"

#include <QStringList>

/// First lists of points, for a person to name and to complete: a line of titles and a point for each
/// address, named by it, with empty columns for what is to be found out.

/// Of the tags of a project. Tags that are no address, and repeated ones, are left out.
QStringList draftOfTags(const QStringList &tags);
/// Of what a scan found: lines that begin with "HR1..100" or "DI5"; of a range each address. The error names
/// the line.
Result<QStringList> draftOfRanges(const QStringList &lines);
