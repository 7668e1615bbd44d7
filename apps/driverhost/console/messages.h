#pragma once

#include "desk/link/session.h"
#include "desk/points/point.h"

#include <QStringList>

/// What people are to know goes to standard error, so that standard output holds nothing but values.

/// "driverhost: TEXT".
void reportError(const QString &text);
/// The text as it stands.
void report(const QString &text);

/// The session's failure with what the table calls \a label: the driver's text as it stands, what to look at
/// next, and how often it was tried.
void reportFailure(Session &session, const QString &label);
/// What is odd about a command that has succeeded: it took several attempts, or its reply is an echo.
void reportOddSuccess(const Session &session, const QString &label);
/// Says what to expect of station 0.
void reportBroadcast(int station);
/// Says which items are more than one request carries.
void reportPortions(const std::vector<Point> &points);
void reportWritePortions(const TypedItems &items);

/// Writes lines to standard output at once; false when nobody reads it any more.
bool print(const QStringList &lines);

/// Writes each line of a trace to standard error in one piece; may be called from any thread.
TraceSink stderrTrace();
