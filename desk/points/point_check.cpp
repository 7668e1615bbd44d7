#include "desk/points/point_check.h"

#include <algorithm>
#include <tuple>

namespace
{

// Where a point lies in its area, in bits.
struct Extent {
    const Point *point;
    qint64 first;
    qint64 last;
};

int bitsOfItem(const Address &address)
{
    return address.isBitArea() ? 1 : modbus::RegisterBits;
}

Extent bitsUsedBy(const Point &point)
{
    const Address &address = point.at.address;
    const ValueType &type = point.at.type;
    const qint64 start = qint64(address.wireOffset()) * bitsOfItem(address);
    if (type.isBit())
        return {&point, start + std::max(address.bit, 0), start + std::max(address.bit, 0)};
    if (type.isByte()) {
        const bool isHigh = !address.isBitArea() && !point.at.order.isLowByteFirst;
        const qint64 first = start + (isHigh ? modbus::ByteBits : 0);
        return {&point, first, first + modbus::ByteBits - 1};
    }
    return {&point, start, start + qint64(type.registers()) * modbus::RegisterBits - 1};
}

auto areaOf(const Extent &extent)
{
    const Address &address = extent.point->at.address;
    return std::make_tuple(address.station, address.area);
}

bool isBefore(const Extent &left, const Extent &right)
{
    return std::make_tuple(areaOf(left), left.first, left.point->line) <
           std::make_tuple(areaOf(right), right.first, right.point->line);
}

bool isPartOfWord(const Extent &part, const Extent &word)
{
    const bool isSmaller = part.point->at.type.isBit() || part.point->at.type.isByte();
    return isSmaller && !word.point->at.type.isBit() && part.first >= word.first && part.last <= word.last &&
           word.last - word.first > part.last - part.first;
}

QString remark(const Extent &one, const Extent &other)
{
    const Extent &later = one.point->line > other.point->line ? one : other;
    const Extent &earlier = &later == &one ? other : one;
    const bool isSame = one.first == other.first && one.last == other.last;
    return QStringLiteral("%1: \"%2\" (%3) %4 \"%5\" (%6) in line %7")
        .arg(QString::number(later.point->line), later.point->name, later.point->at.label(0),
             isSame ? QStringLiteral("is at the address of") : QStringLiteral("overlaps"),
             earlier.point->name, earlier.point->at.label(0), QString::number(earlier.point->line));
}

} // namespace

QStringList oddPoints(const std::vector<Point> &points)
{
    std::vector<Extent> extents;
    std::transform(points.begin(), points.end(), std::back_inserter(extents), bitsUsedBy);
    std::sort(extents.begin(), extents.end(), isBefore);
    std::vector<std::pair<int, QString>> found;
    for (auto one = extents.begin(); one != extents.end(); ++one) {
        for (auto next = one + 1;
             next != extents.end() && areaOf(*next) == areaOf(*one) && next->first <= one->last; ++next) {
            if (!isPartOfWord(*one, *next) && !isPartOfWord(*next, *one))
                found.emplace_back(std::max(one->point->line, next->point->line), remark(*one, *next));
        }
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const auto &left, const auto &right) { return left.first < right.first; });
    QStringList lines;
    for (const auto &[line, text] : found)
        lines += text;
    return lines;
}
