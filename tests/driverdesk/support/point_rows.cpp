#include "tests/driverdesk/support/point_rows.h"

#include "desk/points/point_file.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

std::vector<PointRow> rowsOfTable(const QByteArray &csv)
{
    const PointTable table = parsePoints(csv);
    EXPECT_EQ(table.problems.join(QLatin1Char('\n')), QString());
    std::vector<PointRow> rows;
    for (const Point &point : table.points)
        rows.push_back({std::make_shared<const Point>(point), 0, 1});
    return rows;
}

PointRow rowOfPoint(const QByteArray &cells, int station)
{
    std::vector<PointRow> rows =
        rowsOfTable("name,address,type,scale,unit,low,high,states\npoint," + cells + "\n");
    EXPECT_EQ(rows.size(), 1U);
    rows.front().station = station;
    return rows.front();
}
