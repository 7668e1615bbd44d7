#include "desk/output/write_form.h"

#include <algorithm>

namespace
{

const QJsonValue Unknown(QJsonValue::Undefined);

Fields fieldsOf(const WrittenRow &row)
{
    const ValueRow &item = row.item;
    return {
        {"station", item.station},
        {"address", item.address},
        {"offset", item.offset < 0 ? QJsonValue() : QJsonValue(item.offset)},
        {"kind", item.kind},
        row.isKnown ? Field("value", item.value.text, item.value.number) : Field("value", QJsonValue()),
        Field::withoutColumn("text", row.isKnown ? QJsonValue(item.value.withUnit(item.unit)) : QJsonValue()),
        {"wanted", row.wanted.text, row.wanted.number},
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
    all.reserve(rows.size());
    for (const Row &row : rows)
        all.push_back(fieldsOf(row));
    return all;
}

// A column for names where there are any.
std::vector<Fields> withNames(const std::vector<WrittenRow> &rows)
{
    std::vector<Fields> all = fieldsOfAll(rows);
    for (size_t i = 0; i < rows.size(); ++i)
        all[i].insert(all[i].begin(), {"name", rows[i].item.name});
    return all;
}

} // namespace

QStringList linesOf(const std::vector<WrittenRow> &rows, OutputFormat format)
{
    const bool hasNames =
        std::any_of(rows.begin(), rows.end(), [](const WrittenRow &row) { return !row.item.name.isEmpty(); });
    if (hasNames)
        return linesForPrograms(withNames({WrittenRow()}).front(), withNames(rows), format);
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
