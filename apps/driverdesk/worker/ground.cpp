#include "apps/driverdesk/worker/ground.h"

std::vector<PointRow> pointRowsOf(const Ground &ground)
{
    std::vector<PointRow> rows;
    for (const Reading &reading : ground.readings) {
        const int station = stationOf(reading.items, ground.link.channel.station);
        for (const Reading::Shown &shown : reading.shown)
            rows.push_back({shown.point, shown.index, station});
    }
    return rows;
}

QString labelOf(const PointRow &row)
{
    return row.point->name.isEmpty() ? row.point->at.label(row.index) : row.point->name;
}
