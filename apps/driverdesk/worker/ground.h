#pragma once

#include "apps/driverhost/console/plan_options.h"
#include "desk/link/link_settings.h"
#include "desk/readings/readings.h"

/// What a window is opened on: a link, and what is read there again and again.
struct Ground {
    LinkSettings link;
    QStringList tags; ///< that a project made of the link needs
    std::vector<Reading> readings;
    PlanOptions plan;    ///< of the requests that bring them
    int interval = 1000; ///< milliseconds from the beginning of a round to the next
    QString title;       ///< for people
};

/// A value of a point, which is a row of tables. Rows are numbered in the order of the readings' values.
struct PointRow {
    std::shared_ptr<const Point> point;
    int index = 0;   ///< of the point's values
    int station = 1; ///< that is asked
};

std::vector<PointRow> pointRowsOf(const Ground &ground);
/// What people call the row: its point's name, or its address.
QString labelOf(const PointRow &row);
