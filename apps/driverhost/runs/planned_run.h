#pragma once

#include "desk/learning/station_facts.h"
#include "desk/link/session.h"
#include "desk/output/fields.h"
#include "desk/readings/readings.h"

/// Reads values once, by the requests that take the line for the shortest time, and prints them in their
/// order. While that takes long the terminal shows how far it is, as \a title. The exit code.
int readPlanned(Session &session, const std::vector<Reading> &readings, Learnt &learnt, OutputFormat format,
                const QString &title);
