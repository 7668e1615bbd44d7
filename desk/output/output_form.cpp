#include "desk/output/output_form.h"

#include "desk/output/table.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace
{

QStringList csvTitles(bool hasTime)
{
    QStringList titles{QStringLiteral("station"), QStringLiteral("address"), QStringLiteral("offset"),
                       QStringLiteral("kind"), QStringLiteral("value")};
    if (hasTime) {
        titles.prepend(QStringLiteral("time"));
        titles.append(QStringLiteral("latency_ms"));
    }
    return titles;
}

double milliseconds(qint64 microseconds)
{
    return static_cast<double>(microseconds) / 1000;
}

QString offsetText(const ValueRow &row)
{
    return row.offset < 0 ? QString() : QString::number(row.offset);
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

QString csvLine(const ValueRow &row)
{
    QStringList cells{QString::number(row.station), quoted(row.address), offsetText(row), nameOf(row.kind),
                      valueText(row)};
    if (!row.time.isEmpty()) {
        cells.prepend(row.time);
        cells.append(QString::number(milliseconds(row.latency)));
    }
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
    if (!row.time.isEmpty()) {
        object.insert(QStringLiteral("time"), row.time);
        object.insert(QStringLiteral("latency_ms"), milliseconds(row.latency));
    }
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

} // namespace

QStringList outputFormatNames()
{
    return {QStringLiteral("text"), QStringLiteral("csv"), QStringLiteral("json")};
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
        lines += csvTitles(false).join(QLatin1Char(','));
    for (const ValueRow &row : rows)
        lines += format == OutputFormat::Csv ? csvLine(row) : jsonLine(row);
    return lines;
}

QString seriesTitles(OutputFormat format)
{
    return format == OutputFormat::Csv ? csvTitles(true).join(QLatin1Char(',')) : QString();
}

QString seriesLine(const ValueRow &row, OutputFormat format, int addressWidth)
{
    switch (format) {
    case OutputFormat::Csv: return csvLine(row);
    case OutputFormat::Json: return jsonLine(row);
    case OutputFormat::Text: break;
    }
    return QStringLiteral("%1  %2  %3")
        .arg(row.time, row.address.leftJustified(addressWidth), valueText(row));
}
