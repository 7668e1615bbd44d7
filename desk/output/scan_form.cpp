#include "desk/output/scan_form.h"

namespace
{

QJsonValue textOrNothing(const QString &text)
{
    return text.isEmpty() ? QJsonValue(QJsonValue::Undefined) : QJsonValue(text);
}

Fields fieldsOf(const StationRow &row)
{
    return {{"station", row.station},
            {"result", row.result},
            {"failure", textOrNothing(row.failure)},
            {"error", textOrNothing(row.error)}};
}

Fields fieldsOf(const RangeRow &row)
{
    return {{"station", row.station}, {"address", row.address}, {"first", row.first}, {"last", row.last}};
}

} // namespace

QStringList linesOf(const std::vector<StationRow> &rows, OutputFormat format)
{
    std::vector<Fields> all;
    all.reserve(rows.size());
    for (const StationRow &row : rows)
        all.push_back(fieldsOf(row));
    return linesForPrograms(fieldsOf(StationRow()), all, format);
}

QStringList linesOf(const std::vector<RangeRow> &rows, OutputFormat format)
{
    std::vector<Fields> all;
    all.reserve(rows.size());
    for (const RangeRow &row : rows)
        all.push_back(fieldsOf(row));
    return linesForPrograms(fieldsOf(RangeRow()), all, format);
}
