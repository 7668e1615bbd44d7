#include "desk/points/point_names.h"

#include <QRegularExpression>

#include <algorithm>
#include <functional>

namespace
{

const int MaxSuggestions = 3;
const int MinShared = 2;

std::vector<Point> pointsWhere(const std::vector<Point> &points,
                               const std::function<bool(const Point &)> &isMeant)
{
    std::vector<Point> found;
    std::copy_if(points.begin(), points.end(), std::back_inserter(found), isMeant);
    return found;
}

// How many letters two names begin with alike.
int sharedLetters(const QString &left, const QString &right)
{
    const auto ends = std::mismatch(left.begin(), left.end(), right.begin(), right.end(),
                                    [](QChar a, QChar b) { return a.toLower() == b.toLower(); });
    return static_cast<int>(ends.first - left.begin());
}

} // namespace

bool isNamePattern(const QString &text)
{
    return text.contains(QRegularExpression(QStringLiteral("[*?[]")));
}

std::vector<Point> pointsNamed(const std::vector<Point> &points, const QString &nameOrPattern)
{
    if (isNamePattern(nameOrPattern)) {
        const QRegularExpression pattern(QRegularExpression::wildcardToRegularExpression(nameOrPattern),
                                         QRegularExpression::CaseInsensitiveOption);
        return pointsWhere(points, [&](const Point &point) { return pattern.match(point.name).hasMatch(); });
    }
    std::vector<Point> exact =
        pointsWhere(points, [&](const Point &point) { return point.name == nameOrPattern; });
    if (!exact.empty())
        return exact;
    std::vector<Point> alike = pointsWhere(points, [&](const Point &point) {
        return point.name.compare(nameOrPattern, Qt::CaseInsensitive) == 0;
    });
    if (alike.size() > 1)
        alike.clear();
    return alike;
}

QStringList similarNames(const std::vector<Point> &points, const QString &name)
{
    std::vector<Point> similar =
        pointsWhere(points, [&](const Point &point) { return sharedLetters(point.name, name) >= MinShared; });
    std::stable_sort(similar.begin(), similar.end(), [&](const Point &left, const Point &right) {
        return sharedLetters(left.name, name) > sharedLetters(right.name, name);
    });
    QStringList names;
    for (const Point &point : similar) {
        if (names.size() < MaxSuggestions)
            names += point.name;
    }
    return names;
}
