#include "desk/output/write_form.h"

namespace
{

const QJsonValue Unknown(QJsonValue::Undefined);

Field numberField(const char *name, quint32 value, const ValueRow &item)
{
    return {name, formatValue(value, item.kind, item.form), numberOf(value, item.kind, item.form)};
}

Fields fieldsOf(const WrittenRow &row)
{
    const ValueRow &item = row.item;
    return {{"station", item.station},
            {"address", item.address},
            {"offset", item.offset < 0 ? QJsonValue() : QJsonValue(item.offset)},
            {"kind", nameOf(item.kind)},
            row.isKnown ? numberField("value", item.value, item) : Field("value", QJsonValue()),
            Field::withoutColumn("text", row.isKnown ? QJsonValue(valueText(item)) : QJsonValue()),
            numberField("wanted", row.wanted, item),
            {"result", row.result},
            {"failure", item.failure ? QJsonValue(item.failure->kind) : Unknown},
            {"error", item.failure ? QJsonValue(item.failure->text) : Unknown}};
}

Fields fieldsOf(const FrameRow &row)
{
    return {{"station", row.station}, {"frame", row.bytes}, {"meaning", row.meaning}};
}

template <typename Row>
std::vector<Fields> fieldsOfAll(const std::vector<Row> &rows)
{
    std::vector<Fields> all;
    for (const Row &row : rows)
        all.push_back(fieldsOf(row));
    return all;
}

} // namespace

QStringList linesOf(const std::vector<WrittenRow> &rows, OutputFormat format)
{
    return linesForPrograms(fieldsOf(WrittenRow()), fieldsOfAll(rows), format);
}

QStringList linesOf(const std::vector<FrameRow> &rows, OutputFormat format)
{
    if (format != OutputFormat::Text)
        return linesForPrograms(fieldsOf(FrameRow()), fieldsOfAll(rows), format);
    QStringList lines;
    for (const FrameRow &row : rows)
        lines += row.bytes + QStringLiteral("  ") + row.meaning;
    return lines;
}
