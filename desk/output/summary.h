#pragma once

#include "desk/link/line_counts.h"

#include <QJsonObject>
#include <QStringList>

/// What happened on a line, for people: "9 requests, 12 attempts, 3 retries; 3 time-outs, 1 CRC error". What
/// did not happen is left out.
QString countsText(const LineCounts &counts);
/// The total; where there were several stations, a line for each besides.
QStringList countsLines(const LinkCounts &counts);

/// Of the fields and columns that lines for programs have; raised when one changes its meaning.
const int OutputVersion = 1;

/// The last line of JSON: the version, the counts in total and for each station, and \a more.
QString summaryLine(const LinkCounts &counts, const QJsonObject &more = {});
