#pragma once

#include "apps/driverdesk/slave/moving_slave.h"

#include <QStringList>

/// Makes the files available that are built into the program; before anything else here.
void loadBuiltInFiles();

/// Gives the slave what a small boiler house has: moving values, and a fault now and then. What it had before
/// is gone.
void furnishDemo(MovingSlave &slave, quint32 seed);

/// What has to be opened to see the demo's slave on a port, as the command line would say it.
QStringList demoArguments(quint16 port);

/// The names of points that the demo draws.
QStringList demoTrends();
