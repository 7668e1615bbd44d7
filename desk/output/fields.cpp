#include "desk/output/fields.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace
{

const int SignificantDigits = 12;

QString cellOf(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Bool: return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QJsonValue::Double: return QString::number(value.toDouble(), 'g', SignificantDigits);
    case QJsonValue::String: return value.toString();
    default: return {};
    }
}

// Texts of commands line up to here may hold anything that --raw lets pass.
QString quoted(const QString &text)
{
    const QString special = QStringLiteral(",\"\r\n");
    if (std::none_of(text.begin(), text.end(), [&](QChar letter) { return special.contains(letter); }))
        return text;
    return QLatin1Char('"') + QString(text).replace(QLatin1Char('"'), QLatin1String("\"\"")) +
           QLatin1Char('"');
}

QString csvLine(const Fields &fields)
{
    QStringList cells;
    for (const Field &field : fields) {
        if (field.hasColumn)
            cells += quoted(field.cell);
    }
    return cells.join(QLatin1Char(','));
}

QString jsonLine(const Fields &fields)
{
    QJsonObject object;
    for (const Field &field : fields) {
        if (!field.value.isUndefined())
            object.insert(field.name, field.value);
    }
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

} // namespace

QStringList outputFormatNames()
{
    return {QStringLiteral("text"), QStringLiteral("csv"), QStringLiteral("json")};
}

Field::Field(const char *fieldName, const QJsonValue &fieldValue)
    : Field(fieldName, cellOf(fieldValue), fieldValue)
{
}

Field::Field(const char *fieldName, const QString &cellText, const QJsonValue &fieldValue)
    : name(QLatin1String(fieldName)), cell(cellText), value(fieldValue)
{
}

Field Field::withoutColumn(const char *name, const QJsonValue &value)
{
    Field field(name, value);
    field.hasColumn = false;
    return field;
}

Field Field::column(const QString &name, const QString &cell)
{
    Field field("", cell, QJsonValue(QJsonValue::Undefined));
    field.name = name;
    return field;
}

QString titleLine(const Fields &fields, OutputFormat format)
{
    if (format != OutputFormat::Csv)
        return {};
    QStringList titles;
    for (const Field &field : fields) {
        if (field.hasColumn)
            titles += quoted(field.name);
    }
    return titles.join(QLatin1Char(','));
}

QString fieldLine(const Fields &fields, OutputFormat format)
{
    return format == OutputFormat::Json ? jsonLine(fields) : csvLine(fields);
}

QStringList linesForPrograms(const Fields &columns, const std::vector<Fields> &rows, OutputFormat format)
{
    QStringList lines;
    if (format == OutputFormat::Csv)
        lines += titleLine(columns, format);
    for (const Fields &fields : rows)
        lines += fieldLine(fields, format);
    return lines;
}

QJsonValue millisecondsValue(qint64 microseconds)
{
    return microseconds < 0 ? QJsonValue(QJsonValue::Null)
                            : QJsonValue(static_cast<double>(microseconds) / 1000);
}
