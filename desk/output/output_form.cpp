#include "desk/output/output_form.h"

#include "desk/output/table.h"

#include <algorithm>
#include <map>

namespace
{

const QJsonValue Unknown(QJsonValue::Undefined);

QString offsetText(const ValueRow &row)
{
    return row.offset < 0 ? QString() : QString::number(row.offset);
}

QJsonValue known(const ValueRow &row, const QJsonValue &value)
{
    return row.failure ? QJsonValue() : value;
}

Field valueField(const char *name, const ValueRow &row, const QString &text, const QJsonValue &number)
{
    return row.failure ? Field(name, QJsonValue()) : Field(name, text, number);
}

Fields &operator+=(Fields &fields, const Fields &others)
{
    fields.insert(fields.end(), others.begin(), others.end());
    return fields;
}

// Where it is, and what it is.
Fields valueFields(const ValueRow &row)
{
    return {{"station", row.station},
            {"address", row.address},
            {"offset", row.offset < 0 ? QJsonValue() : QJsonValue(row.offset)},
            {"kind", row.kind},
            valueField("value", row, row.value.text, row.value.number),
            Field::withoutColumn("text", known(row, row.value.withUnit(row.unit)))};
}

// What only points have.
Fields pointFields(const ValueRow &row)
{
    return {{"unit", row.unit},
            {"state", known(row, row.value.state)},
            valueField("raw", row, row.value.raw, row.value.rawNumber),
            {"limit", known(row, row.value.limit)}};
}

Fields itemFields(const ValueRow &row, bool hasNames)
{
    if (!hasNames)
        return valueFields(row);
    Fields fields{{"name", row.name}};
    fields += valueFields(row);
    return fields += pointFields(row);
}

Fields failureFields(const ValueRow &row)
{
    return {{"failure", row.failure ? QJsonValue(row.failure->kind) : Unknown},
            {"error", row.failure ? QJsonValue(row.failure->text) : Unknown}};
}

Fields earlierFields(const ValueRow &row)
{
    if (!row.earlier)
        return {{"last_value", Unknown}, {"last_time", Unknown}, {"stale", Unknown}};
    return {{"last_value", row.earlier->value.text, row.earlier->value.number},
            {"last_time", row.earlier->time},
            {"stale", true}};
}

Fields fieldsOf(const ValueRow &row, bool hasNames)
{
    Fields fields = itemFields(row, hasNames);
    return fields += failureFields(row);
}

Fields seriesFields(const ValueRow &row, bool hasNames)
{
    Fields fields{{"time", row.time}};
    fields += itemFields(row, hasNames);
    fields += {{"latency_ms", millisecondsValue(row.latency)},
               {"transaction_ms", millisecondsValue(row.duration)},
               {"attempts", row.attempts}};
    fields += failureFields(row);
    return fields += earlierFields(row);
}

bool hasName(const ValueRow &row)
{
    return !row.name.isEmpty();
}

QStringList linesOf(const Table &table)
{
    const QStringList lines = table.lines();
    return lines.size() > 1 ? lines : QStringList();
}

// Whether an address is shown as several things.
bool hasSeveralTypes(const std::vector<ValueRow> &rows)
{
    std::map<std::pair<int, QString>, QString> types;
    return std::any_of(rows.begin(), rows.end(), [&](const ValueRow &row) {
        return types.insert({{row.station, row.address}, row.type}).first->second != row.type;
    });
}

QStringList typeTable(const std::vector<ValueRow> &rows)
{
    Table table({QStringLiteral("address"), QStringLiteral("offset"), QStringLiteral("type"),
                 QStringLiteral("value")},
                {1, 3});
    for (const ValueRow &row : rows) {
        if (!row.failure)
            table.addRow({row.address, offsetText(row), row.type, row.value.text});
    }
    return linesOf(table);
}

QStringList addressTable(const std::vector<ValueRow> &rows)
{
    if (hasSeveralTypes(rows))
        return typeTable(rows);
    Table table({QStringLiteral("address"), QStringLiteral("offset"), QStringLiteral("value")}, {1, 2});
    for (const ValueRow &row : rows) {
        if (!row.failure)
            table.addRow({row.address, offsetText(row), row.value.text});
    }
    return linesOf(table);
}

QStringList pointTable(const std::vector<ValueRow> &rows)
{
    Table table({QStringLiteral("name"), QStringLiteral("value"), QStringLiteral("raw"),
                 QStringLiteral("address"), QString()});
    for (const ValueRow &row : rows) {
        if (!row.failure)
            table.addRow(
                {labelOf(row), row.value.withUnit(row.unit), row.value.raw, row.address, row.value.limit});
    }
    return linesOf(table);
}

} // namespace

QStringList linesOf(const std::vector<ValueRow> &rows, OutputFormat format)
{
    const bool hasNames = std::any_of(rows.begin(), rows.end(), hasName);
    if (format == OutputFormat::Text)
        return hasNames ? pointTable(rows) : addressTable(rows);
    std::vector<Fields> all;
    all.reserve(rows.size());
    for (const ValueRow &row : rows)
        all.push_back(fieldsOf(row, hasNames));
    return linesForPrograms(fieldsOf(ValueRow(), hasNames), all, format);
}

QString seriesTitles(const SeriesForm &form)
{
    return titleLine(seriesFields(ValueRow(), form.hasNames), form.format);
}

QString seriesLine(const ValueRow &row, const SeriesForm &form)
{
    if (form.format != OutputFormat::Text)
        return fieldLine(seriesFields(row, form.hasNames), form.format);
    QStringList cells{row.time, labelOf(row).leftJustified(form.labelWidth), row.value.withUnit(row.unit)};
    if (form.hasNames)
        cells << QStringLiteral("raw ") + row.value.raw << row.value.limit;
    return cells.join(QStringLiteral("  ")).trimmed();
}
