#pragma once

#include "desk/points/point.h"

#include <QStringList>

/// Whether a text is a pattern for names: "pump*", "valve?", "tank[12]".
bool isNamePattern(const QString &text);

/// The points with a name, or with names that fit a pattern, in their own order. A name counts as it is
/// written, or in other letters of case when that is one point alone; patterns do not mind case. Nothing when
/// there is none.
std::vector<Point> pointsNamed(const std::vector<Point> &points, const QString &nameOrPattern);

/// Up to three names that begin or go on like the one that is not there, for the person who mistyped it.
QStringList similarNames(const std::vector<Point> &points, const QString &name);
