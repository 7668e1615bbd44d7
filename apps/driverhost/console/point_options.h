#pragma once

#include "apps/driverhost/console/item_options.h"
#include "apps/driverhost/console/link_options.h"
#include "desk/points/point.h"

/// Values by address or by name: what the words on the command line stand for.

/// "--points" and "--encoding".
QList<QCommandLineOption> pointOptions();

/// A table of points, and what addresses beside it stand for.
class PointWords
{
public:
    /// Reads the table that the options, or the target, name; what is wrong is noted in \a line.
    PointWords(CommandLine &line, const ItemOptions &options);

    bool hasTable() const { return !m_file.isEmpty(); }
    /// All points of the table.
    const std::vector<Point> &all() const { return m_table; }
    /// What a word stands for: a point by its name, points by a pattern, or the values at an address. The
    /// error says what was expected.
    Result<std::vector<Point>> find(const QString &word, const ItemCounts &counts) const;
    /// What is wrong where there are neither words nor a table.
    QString nothingGiven() const;

private:
    Error noSuchPoint(const QString &word, const Error &asAddress) const;

    ItemOptions m_options;
    TextEncoding m_encoding = TextEncoding::Latin1;
    QString m_file;
    QString m_missingFile; // that the target names
    std::vector<Point> m_table;
};

/// Everything that a command line of a target, addresses, names and their options says.
struct AddressedPoints {
    LinkSettings link;
    std::vector<Point> points;
    QStringList tags;      ///< that a project needs for them
    bool hasTable = false; ///< of points
};
AddressedPoints addressedPoints(CommandLine &line, const char *countOption = "items");

/// The tags that a project needs for the points.
QStringList neededTags(const std::vector<Point> &points, const LinkSettings &link);
