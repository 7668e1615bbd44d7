#include "desk/output/output_form.h"

#include "desk/output/table.h"

namespace
{

const QJsonValue Unknown(QJsonValue::Undefined);

QString offsetText(const ValueRow &row)
{
    return row.offset < 0 ? QString() : QString::number(row.offset);
}

QJsonValue numberOf(const ValueRow &row)
{
    return numberOf(row.value, row.kind, row.form);
}

Field valueField(const ValueRow &row)
{
    return row.failure ? Field("value", QJsonValue()) : Field("value", valueText(row), numberOf(row));
}

// Where it is, and what it is.
Fields valueFields(const ValueRow &row)
{
    return {{"station", row.station},
            {"address", row.address},
            {"offset", row.offset < 0 ? QJsonValue() : QJsonValue(row.offset)},
            {"kind", nameOf(row.kind)},
            valueField(row),
            Field::withoutColumn("text", row.failure ? QJsonValue() : QJsonValue(valueText(row)))};
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
    return {{"last_value", formatValue(row.earlier->value, row.kind, row.form),
             numberOf(row.earlier->value, row.kind, row.form)},
            {"last_time", row.earlier->time},
            {"stale", true}};
}

Fields &operator+=(Fields &fields, const Fields &others)
{
    fields.insert(fields.end(), others.begin(), others.end());
    return fields;
}

Fields fieldsOf(const ValueRow &row)
{
    Fields fields = valueFields(row);
    return fields += failureFields(row);
}

Fields seriesFields(const ValueRow &row)
{
    Fields fields{{"time", row.time}};
    fields += valueFields(row);
    fields += {{"latency_ms", millisecondsValue(row.latency)},
               {"transaction_ms", millisecondsValue(row.duration)},
               {"attempts", row.attempts}};
    fields += failureFields(row);
    return fields += earlierFields(row);
}

QStringList tableOf(const std::vector<ValueRow> &rows)
{
    Table table({QStringLiteral("address"), QStringLiteral("offset"), QStringLiteral("value")}, {1, 2});
    for (const ValueRow &row : rows) {
        if (!row.failure)
            table.addRow({row.address, offsetText(row), valueText(row)});
    }
    const QStringList lines = table.lines();
    return lines.size() > 1 ? lines : QStringList();
}

} // namespace

QStringList linesOf(const std::vector<ValueRow> &rows, OutputFormat format)
{
    if (format == OutputFormat::Text)
        return tableOf(rows);
    std::vector<Fields> all;
    for (const ValueRow &row : rows)
        all.push_back(fieldsOf(row));
    return linesForPrograms(fieldsOf(ValueRow()), all, format);
}

QString seriesTitles(OutputFormat format)
{
    return titleLine(seriesFields(ValueRow()), format);
}

QString seriesLine(const ValueRow &row, OutputFormat format, int addressWidth)
{
    if (format != OutputFormat::Text)
        return fieldLine(seriesFields(row), format);
    return QStringLiteral("%1  %2  %3")
        .arg(row.time, row.address.leftJustified(addressWidth), valueText(row));
}
