#pragma once

#include <QJsonValue>
#include <QStringList>

#include <vector>

enum class OutputFormat { Text, Csv, Json };

/// "text", "csv", "json", in the order of the enumeration.
QStringList outputFormatNames();

/// One thing that a line for programs tells: a column of CSV, a member of a JSON object.
struct Field {
    /// In both forms; null is an empty cell. What is not known is undefined: an empty cell, and no member.
    Field(const char *fieldName, const QJsonValue &fieldValue);
    /// Where people are to read the cell as they read texts, and programs the number.
    Field(const char *fieldName, const QString &cellText, const QJsonValue &fieldValue);

    /// A member for which there is no column.
    static Field withoutColumn(const char *name, const QJsonValue &value);

    /// A column of CSV alone.
    static Field column(const QString &name, const QString &cell);

    QString name;
    QString cell;
    QJsonValue value;
    bool hasColumn = true;
};
using Fields = std::vector<Field>;

/// CSV's first line; empty in other forms.
QString titleLine(const Fields &fields, OutputFormat format);
/// The line of CSV, or the JSON object on one line.
QString fieldLine(const Fields &fields, OutputFormat format);

/// The title line, where the format has one, and a line for each of the rows.
QStringList linesForPrograms(const Fields &columns, const std::vector<Fields> &rows, OutputFormat format);

/// Numbers of microseconds as milliseconds; negative ones are not known, and null.
QJsonValue millisecondsValue(qint64 microseconds);
