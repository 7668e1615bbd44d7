// Tables of points as spreadsheets save them, or anything else: points or problems, and each problem names a
// line.

#include "desk/points/point_file.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const PointTable table = parsePoints(fuzz::Input(data, size).rest());
    for (const QString &problem : table.problems)
        FUZZ_CHECK(!problem.isEmpty());
    for (const Point &point : table.points)
        FUZZ_CHECK(!point.name.isEmpty());
    return 0;
}
