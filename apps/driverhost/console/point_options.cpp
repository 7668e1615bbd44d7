#include "apps/driverhost/console/point_options.h"

#include "desk/points/point_file.h"
#include "desk/points/point_names.h"
#include "desk/project/needed_tags.h"

#include <QFileInfo>

namespace
{

// Whether a word says no type of its own.
bool isWithoutType(const QString &word, const std::vector<Point> &points)
{
    const Result<TypedText> typed = parseTypedText(word);
    return points.front().name.isEmpty() && typed && !typed->type;
}

// What is meant for items without a type must not be lost on others.
void checkOptions(CommandLine &line, bool isAnyPlain, const char *countOption)
{
    for (const char *option : {"kind", "as", "word-order", countOption}) {
        if (line.isSet(option) && !isAnyPlain)
            line.addError(QStringLiteral("--%1 is for items without a type, and there are none")
                              .arg(QLatin1String(option)));
    }
}

} // namespace

QList<QCommandLineOption> pointOptions()
{
    return {
        {QStringLiteral("points"),
         QStringLiteral("Table of points, which are then taken by name; without names all of them."),
         QStringLiteral("FILE")},
        {QStringLiteral("encoding"),
         QStringLiteral("Of texts in registers: latin1 or utf8 (default latin1)."), QStringLiteral("CODE"),
         QStringLiteral("latin1")},
    };
}

PointWords::PointWords(CommandLine &line, const ItemOptions &options)
    : m_options(options),
      m_encoding(static_cast<TextEncoding>(
          line.choice("encoding", {QStringLiteral("latin1"), QStringLiteral("utf8")}))),
      m_file(options.isRaw ? QString() : line.text("points"))
{
    if (m_file.isEmpty())
        return;
    // A target may name the table before there is one.
    if (!line.isSet("points") && !QFileInfo::exists(m_file)) {
        std::swap(m_file, m_missingFile);
        return;
    }
    const Result<std::vector<Point>> points = readPointFile(m_file);
    if (!points)
        line.addError(points.errorText());
    m_table = points.valueOr({});
    for (Point &point : m_table)
        point.encoding = m_encoding;
}

Result<std::vector<Point>> PointWords::find(const QString &word, const ItemCounts &counts) const
{
    std::vector<Point> named = pointsNamed(m_table, word);
    if (!named.empty())
        return named;
    const Result<TypedItems> items = itemsAt(word, m_options, counts);
    if (!items)
        return noSuchPoint(word, items.error());
    Point point;
    point.at = *items;
    point.encoding = m_encoding;
    return std::vector<Point>{point};
}

Error PointWords::noSuchPoint(const QString &word, const Error &asAddress) const
{
    if (!hasTable() && !m_missingFile.isEmpty())
        return {QStringLiteral("%1; and there is no %2, the target's table of points")
                    .arg(asAddress.text, m_missingFile)};
    if (!hasTable())
        return asAddress;
    const QStringList similar = similarNames(m_table, word);
    const QString hint =
        similar.isEmpty() ? QString() : QStringLiteral("; there is ") + similar.join(QStringLiteral(", "));
    return {QStringLiteral("\"%1\": no such point in %2, and no address%3").arg(word, m_file, hint)};
}

QStringList neededTags(const std::vector<Point> &points, const LinkSettings &link)
{
    QStringList tags;
    for (const Point &point : points)
        tags += neededTags(point.at.items, stationOf(point.at.items, link.channel.station));
    return tags;
}

QString PointWords::nothingGiven() const
{
    if (m_missingFile.isEmpty())
        return QStringLiteral("no address; expected one such as HR100");
    return QStringLiteral("no address, and there is no %1, the target's table of points").arg(m_missingFile);
}

AddressedPoints addressedPoints(CommandLine &line, const char *countOption)
{
    AddressedPoints addressed;
    QStringList words = line.words();
    addressed.link = linkSettings(line, words);
    const ItemOptions options = itemOptionsOf(line);
    ItemCounts counts;
    if (line.isSet(countOption))
        counts.untyped = line.number(countOption, 1, modbus::AddressSpace);
    const PointWords table(line, options);
    addressed.hasTable = table.hasTable();
    bool isAnyPlain = false;
    for (const QString &word : qAsConst(words)) {
        const Result<std::vector<Point>> points = table.find(word, counts);
        if (!points) {
            line.addError(points.errorText());
            continue;
        }
        isAnyPlain = isAnyPlain || options.isRaw || isWithoutType(word, *points);
        addressed.points.insert(addressed.points.end(), points->begin(), points->end());
    }
    if (words.isEmpty() && table.hasTable())
        addressed.points = table.all();
    else if (words.isEmpty())
        line.addError(table.nothingGiven());
    checkOptions(line, isAnyPlain, countOption);
    addressed.tags = neededTags(addressed.points, addressed.link);
    return addressed;
}
