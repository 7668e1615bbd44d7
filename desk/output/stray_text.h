#pragma once

#include <QStringList>

class LineChannel;

/// What a line has brought that nobody asked for, and what that is likely to be; how often it was settled. A
/// line each, for people; nothing where nothing was.
QStringList strayLines(const LineChannel &channel);
