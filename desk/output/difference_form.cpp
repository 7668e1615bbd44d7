#include "desk/output/difference_form.h"

namespace
{

QJsonValue valueOf(const std::optional<quint16> &value)
{
    return value ? QJsonValue(*value) : QJsonValue();
}

Fields fieldsOf(const DifferenceRow &row, bool hasResults)
{
    const Difference &difference = row.difference;
    Fields fields{{"station", difference.station},
                  {"address", areaName(difference.area) + QString::number(difference.offset + 1)},
                  {"offset", difference.offset},
                  {"kept", valueOf(difference.kept)},
                  {"now", valueOf(difference.now)}};
    if (hasResults)
        fields.push_back({"result", row.result});
    return fields;
}

} // namespace

QStringList linesOf(const std::vector<DifferenceRow> &rows, bool hasResults, OutputFormat format)
{
    std::vector<Fields> all;
    all.reserve(rows.size());
    for (const DifferenceRow &row : rows)
        all.push_back(fieldsOf(row, hasResults));
    return linesForPrograms(fieldsOf(DifferenceRow(), hasResults), all, format);
}
