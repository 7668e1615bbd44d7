#include "apps/driverhost/watch/value_summaries.h"

#include "desk/output/table.h"

#include <QJsonObject>

namespace
{

const int SignificantDigits = 7;

QString numberText(double number, const QString &unit)
{
    const QString text = QString::number(number, 'g', SignificantDigits);
    return unit.isEmpty() ? text : text + QLatin1Char(' ') + unit;
}

} // namespace

ValueSummaries::ValueSummaries(const std::vector<Reading> &readings)
{
    for (const Reading &reading : readings) {
        m_first.push_back(m_entries.size());
        for (const Reading::Shown &shown : reading.shown)
            m_entries.push_back({labelOf(shown), shown.point->unit, {}});
    }
}

bool ValueSummaries::add(size_t reading, const std::vector<ValueRow> &rows)
{
    for (size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].value.number.isDouble())
            m_entries[m_first[reading] + i].summary.add(rows[i].value.number.toDouble());
    }
    return true;
}

bool ValueSummaries::addFailure(size_t /*reading*/, const std::vector<ValueRow> & /*rows*/,
                                const QString & /*error*/)
{
    m_isWhole = false;
    return true;
}

QStringList ValueSummaries::lines() const
{
    Table table({QStringLiteral("value"), QStringLiteral("read"), QStringLiteral("min"),
                 QStringLiteral("max"), QStringLiteral("mean")},
                {1, 2, 3, 4});
    for (const Entry &entry : m_entries) {
        const ValueSummary &summary = entry.summary;
        if (summary.count() > 0)
            table.addRow({entry.label, QString::number(summary.count()),
                          numberText(summary.min(), entry.unit), numberText(summary.max(), entry.unit),
                          numberText(summary.mean(), entry.unit)});
    }
    const QStringList lines = table.lines();
    return lines.size() > 1 ? lines : QStringList();
}

QJsonArray ValueSummaries::objects() const
{
    QJsonArray objects;
    for (const Entry &entry : m_entries) {
        const ValueSummary &summary = entry.summary;
        QJsonObject object{{QStringLiteral("label"), entry.label},
                           {QStringLiteral("read"), static_cast<qint64>(summary.count())}};
        if (summary.count() > 0) {
            object.insert(QStringLiteral("min"), summary.min());
            object.insert(QStringLiteral("max"), summary.max());
            object.insert(QStringLiteral("mean"), summary.mean());
        }
        objects.append(object);
    }
    return objects;
}
