#include "desk/output/plan_form.h"

#include "desk/items/number_text.h"
#include "desk/output/summary.h"
#include "desk/output/table.h"
#include "desk/time_text.h"

namespace
{

const double Millisecond = 1000; // in microseconds

QString millisecondsText(double microseconds)
{
    return QString::number(microseconds / Millisecond, 'f', microseconds < Millisecond ? 3 : 1) +
           QStringLiteral(" ms");
}

QString termsText(const RequestTerms &terms)
{
    return QStringLiteral("station %1: %2 a request, %3 %4, at most %5 at once; %6")
        .arg(QString::number(terms.station), millisecondsText(terms.cost.perRequest),
             millisecondsText(terms.cost.perUnit),
             terms.areBits ? QStringLiteral("eight bits") : QStringLiteral("a register"),
             QString::number(terms.maxCount),
             terms.isMeasured ? QStringLiteral("measured") : QStringLiteral("assumed"));
}

QString refusedText(const RefusedPoints &points)
{
    const QDateTime again = QDateTime::fromMSecsSinceEpoch(points.refusal.askAgain);
    return QStringLiteral("%1 (%2): refused with exception %3, not asked for until %4")
        .arg(rangeText(points.range), counted(points.points, "value"),
             QString::number(points.refusal.exception), dateAndTimeText(again));
}

QString sumText(const PlanReport &report)
{
    return QStringLiteral("%1, %2 a round")
        .arg(counted(static_cast<qint64>(report.requests.size()), "request"),
             millisecondsText(report.microseconds()));
}

QStringList textLines(const PlanReport &report)
{
    Table table({QStringLiteral("request"), QStringLiteral("values"), QStringLiteral("filled"),
                 QStringLiteral("time"), QStringLiteral("why")},
                {1, 2, 3});
    for (const PlannedRequest &request : report.requests) {
        table.addRow({rangeText(request.range), QString::number(request.points),
                      QString::number(request.filled), millisecondsText(request.microseconds), request.why});
    }
    QStringList lines;
    for (const RequestTerms &terms : report.terms)
        lines += termsText(terms);
    lines += table.lines();
    for (const RefusedPoints &points : report.refused)
        lines += refusedText(points);
    return lines << sumText(report);
}

Fields fieldsOf(const PlannedRequest &request)
{
    return {{"station", request.range.station},
            {"address", rangeText(request.range)},
            {"values", request.points},
            {"filled", request.filled},
            {"ms", millisecondsValue(static_cast<qint64>(request.microseconds))},
            {"why", request.why}};
}

} // namespace

QStringList linesOf(const PlanReport &report, OutputFormat format)
{
    if (format == OutputFormat::Text)
        return textLines(report);
    std::vector<Fields> rows;
    for (const PlannedRequest &request : report.requests)
        rows.push_back(fieldsOf(request));
    return linesForPrograms(fieldsOf(PlannedRequest()), rows, format);
}
