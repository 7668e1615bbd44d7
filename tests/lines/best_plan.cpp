#include "tests/lines/best_plan.h"

#include <algorithm>
#include <limits>
#include <tuple>

namespace
{

const double Never = std::numeric_limits<double>::infinity();

using Points = std::vector<AreaRange>;

bool isBefore(const AreaRange &left, const AreaRange &right)
{
    return std::tie(left.station, left.area, left.first, left.last) <
           std::tie(right.station, right.area, right.first, right.last);
}

bool isSamePlace(const AreaRange &left, const AreaRange &right)
{
    return left.station == right.station && left.area == right.area;
}

bool isGiven(const PlanDevice &device, const AreaRange &range)
{
    return device.answer(range).outcome == RangeReply::Given;
}

void add(PlanTime &time, const PlanDevice &device, const AreaRange &range)
{
    ++time.requests;
    time.microseconds += device.time(range, device.answer(range));
}

Points sorted(Points points)
{
    std::sort(points.begin(), points.end(), isBefore);
    return points;
}

// What the device gives, without what lies within another point that it gives.
Points neededPoints(const Layout &layout)
{
    Points needed;
    for (const AreaRange &point : sorted(layout.points)) {
        if (!isGiven(layout.device, point))
            continue;
        const auto holds = [](const AreaRange &outer, const AreaRange &inner) {
            return isSamePlace(outer, inner) && outer.first <= inner.first && inner.last <= outer.last;
        };
        while (!needed.empty() && holds(point, needed.back()))
            needed.pop_back();
        if (needed.empty() || !holds(needed.back(), point))
            needed.push_back(point);
    }
    return needed;
}

// Sends the ranges that `end` makes of the points: it returns the point after the last that goes along with
// one. Those of a range that is refused are read one by one.
template <typename End>
PlanTime rangesPlan(const Layout &layout, const Points &points, End end)
{
    PlanTime time;
    for (auto point = points.begin(); point != points.end();) {
        const auto next = end(point, points.end());
        AreaRange range = *point;
        for (auto other = point; other != next; ++other)
            range.last = std::max(range.last, other->last);
        if (isGiven(layout.device, range)) {
            add(time, layout.device, range);
        } else {
            for (auto other = point; other != next; ++other)
                add(time, layout.device, *other);
        }
        point = next;
    }
    return time;
}

int maxCount(Area area)
{
    return isBitArea(area) ? modbus::MaxReadBits : modbus::MaxReadRegisters;
}

PlanTime operator+(const PlanTime &left, const PlanTime &right)
{
    return {left.requests + right.requests, left.microseconds + right.microseconds};
}

template <typename Condition>
Points selected(const Layout &layout, Condition condition)
{
    Points points;
    std::copy_if(layout.points.begin(), layout.points.end(), std::back_inserter(points), condition);
    return sorted(points);
}

// Runs without a gap within as many bytes of bits as one request brings, whole or not at all.
PlanTime bitRunsPlan(const Layout &layout)
{
    const Points bits = selected(layout, [](const AreaRange &point) { return isBitArea(point.area); });
    PlanTime time;
    for (auto begin = bits.begin(); begin != bits.end();) {
        const auto end = std::find_if(begin, bits.end(), [&](const AreaRange &point) {
            return !isSamePlace(point, *begin) || point.first >= begin->first + modbus::MaxReadBits;
        });
        Layout runs;
        runs.device = layout.device;
        bool isRefused = false;
        for (auto bit = begin; bit != end; ++bit) {
            isRefused = isRefused || !isGiven(layout.device, *bit);
            if (!runs.points.empty() && bit->first <= runs.points.back().last + 1)
                runs.points.back().last = bit->last;
            else
                runs.points.push_back(*bit);
        }
        for (const AreaRange &run : runs.points)
            isRefused = isRefused || !isGiven(layout.device, run);
        if (isRefused)
            runs.points.assign(begin, end);
        for (const AreaRange &run : runs.points)
            add(time, layout.device, run);
        begin = end;
    }
    return time;
}

} // namespace

PlanTime bestPlan(const Layout &layout)
{
    const Points points = neededPoints(layout);
    std::vector<PlanTime> best(points.size() + 1);
    for (size_t end = 1; end <= points.size(); ++end) {
        best[end].microseconds = Never;
        for (size_t begin = end; begin-- > 0;) {
            AreaRange range = points[begin];
            range.last = points[end - 1].last;
            if (!isSamePlace(points[begin], points[end - 1]) || !isGiven(layout.device, range))
                break;
            PlanTime time = best[begin];
            add(time, layout.device, range);
            if (time.microseconds < best[end].microseconds)
                best[end] = time;
        }
    }
    return best.back();
}

double bestByBruteForce(const Layout &layout)
{
    const Points points = neededPoints(layout);
    const size_t all = (size_t(1) << points.size()) - 1;
    std::vector<double> best(all + 1, Never);
    best[0] = 0;
    for (size_t covered = 0; covered < all; ++covered) {
        for (const AreaRange &begin : points) {
            for (const AreaRange &end : points) {
                const AreaRange range{begin.station, begin.area, begin.first, end.last};
                if (best[covered] == Never || !isSamePlace(begin, end) || end.last < begin.first ||
                    !isGiven(layout.device, range))
                    continue;
                size_t more = covered;
                for (size_t i = 0; i < points.size(); ++i) {
                    if (isSamePlace(points[i], range) && points[i].first >= range.first &&
                        points[i].last <= range.last)
                        more |= size_t(1) << i;
                }
                best[more] = std::min(best[more],
                                      best[covered] + layout.device.time(range, layout.device.answer(range)));
            }
        }
    }
    return best[all];
}

PlanTime oneByOnePlan(const Layout &layout)
{
    PlanTime time;
    for (const AreaRange &point : layout.points)
        add(time, layout.device, point);
    return time;
}

PlanTime gapFreePlan(const Layout &layout)
{
    const Points words = selected(
        layout, [](const AreaRange &point) { return !isBitArea(point.area) && point.first == point.last; });
    const auto endOfRun = [](auto begin, auto end) {
        int last = begin->last;
        auto point = begin;
        for (; point != end && isSamePlace(*point, *begin) && point->first <= last + 1 &&
               point->last - begin->first < modbus::MaxReadRegisters;
             ++point)
            last = point->last;
        return point;
    };
    PlanTime doubles;
    for (const AreaRange &point : layout.points) {
        if (point.last > point.first)
            add(doubles, layout.device, point);
    }
    return rangesPlan(layout, words, endOfRun) + bitRunsPlan(layout) + doubles;
}

PlanTime filledPlan(const Layout &layout)
{
    const auto endOfRange = [](auto begin, auto end) {
        return std::find_if(begin, end, [&](const AreaRange &point) {
            return !isSamePlace(point, *begin) || point.last - begin->first >= maxCount(point.area);
        });
    };
    return rangesPlan(layout, sorted(layout.points), endOfRange);
}
