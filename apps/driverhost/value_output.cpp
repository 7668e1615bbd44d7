#include "value_output.h"

#include "table.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace
{

const QStringList &csvTitles()
{
    static const QStringList titles{QStringLiteral("station"), QStringLiteral("address"),
                                    QStringLiteral("offset"), QStringLiteral("kind"),
                                    QStringLiteral("value")};
    return titles;
}

QString offsetText(const ValueRow &row)
{
    return row.offset < 0 ? QString() : QString::number(row.offset);
}

// Texts of commands line up to here may hold anything that --raw lets pass.
QString quoted(const QString &text)
{
    if (!text.contains(QLatin1Char(',')) && !text.contains(QLatin1Char('"')))
        return text;
    return QLatin1Char('"') + QString(text).replace(QLatin1Char('"'), QLatin1String("\"\"")) +
           QLatin1Char('"');
}

QString csvLine(const ValueRow &row)
{
    const QStringList cells{QString::number(row.station), quoted(row.address), offsetText(row),
                            nameOf(row.kind), valueText(row)};
    return cells.join(QLatin1Char(','));
}

QString jsonLine(const ValueRow &row)
{
    QJsonObject object{{QStringLiteral("station"), row.station},
                       {QStringLiteral("address"), row.address},
                       {QStringLiteral("kind"), nameOf(row.kind)},
                       {QStringLiteral("value"), numberOf(row.value, row.kind, row.form)},
                       {QStringLiteral("text"), valueText(row)}};
    object.insert(QStringLiteral("offset"), row.offset < 0 ? QJsonValue() : QJsonValue(row.offset));
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

} // namespace

QStringList outputFormatNames()
{
    return {QStringLiteral("text"), QStringLiteral("csv"), QStringLiteral("json")};
}

QString valueText(const ValueRow &row)
{
    return formatValue(row.value, row.kind, row.form);
}

std::vector<ValueRow> rowsOf(const Items &items, const QByteArray &data, int station, ValueForm form)
{
    std::vector<ValueRow> rows;
    const std::vector<quint32> values = valuesIn(data, items);
    const QString prefix =
        items.address.station < 0 ? QString() : QString::number(items.address.station) + QLatin1Char('-');
    for (int i = 0; i < items.count; ++i) {
        const int offset = items.isRaw() ? -1 : items.addressOf(i).wireOffset();
        rows.push_back(
            {station, prefix + items.label(i), offset, items.kind, form, values[static_cast<size_t>(i)]});
    }
    return rows;
}

QStringList linesOf(const std::vector<ValueRow> &rows, OutputFormat format)
{
    if (format == OutputFormat::Text) {
        Table table({QStringLiteral("address"), QStringLiteral("offset"), QStringLiteral("value")}, {1, 2});
        for (const ValueRow &row : rows)
            table.addRow({row.address, offsetText(row), valueText(row)});
        return table.lines();
    }
    QStringList lines;
    if (format == OutputFormat::Csv)
        lines += csvTitles().join(QLatin1Char(','));
    for (const ValueRow &row : rows)
        lines += format == OutputFormat::Csv ? csvLine(row) : jsonLine(row);
    return lines;
}

bool print(const QStringList &lines)
{
    for (const QString &line : lines)
        std::fprintf(stdout, "%s\n", line.toLocal8Bit().constData());
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}
