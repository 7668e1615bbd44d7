#pragma once

#include "desk/doctor/observing/observations.h"

#include <QStringList>

/// What was seen, for people: a line each, short enough for a terminal of 80 columns.

/// "0.512 s > 01 03 00 00 00 01 84 0A"; of long ones the beginning, and how long they are.
QString sentText(qint64 at, const QByteArray &bytes);
QString receivedText(qint64 at, const QByteArray &bytes);
/// "1.5 s": the same without bytes.
QString eventText(qint64 at, const QString &text);
/// A request and what came of it.
QStringList evidenceOf(const Asked &asked);
/// Of several no more than \a most, the first ones.
QStringList evidenceOf(const std::vector<const Asked *> &asked, size_t most = 2);
QStringList evidenceOf(const std::vector<Stray> &strays, size_t most = 3);

/// "12.3 ms" or "4.2 s".
QString durationText(qint64 microseconds);
/// The number in whole milliseconds, rounded up to \a step.
int roundedUp(qint64 microseconds, int step);
/// "1, 2 and 3", or with another word for the last one.
QString listText(const QStringList &parts, const QString &lastWord = QStringLiteral("and"));
