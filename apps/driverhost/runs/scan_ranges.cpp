#include "apps/driverhost/runs/scan_ranges.h"

#include "apps/driverhost/console/interruptible_run.h"
#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/runs/range_answer.h"
#include "apps/driverhost/terminal/progress.h"
#include "desk/items/number_text.h"
#include "desk/output/scan_form.h"
#include "desk/output/summary.h"

namespace
{

int printRanges(Session &session, const RangeScan &scan, OutputFormat format, bool isInterrupted)
{
    QStringList lines;
    if (format == OutputFormat::Text) {
        lines = scan.found();
    } else {
        std::vector<RangeRow> rows;
        for (const RangeScan::Range &range : scan.ranges())
            rows.push_back(
                {session.stationFor(scan.lastItems()), scan.textOf(range), range.first, range.last});
        lines = linesOf(rows, format);
    }
    if (format == OutputFormat::Json)
        lines +=
            summaryLine(session.counts(), {{QStringLiteral("found"), static_cast<int>(scan.ranges().size())},
                                           {QStringLiteral("scanned_to"), scan.scannedTo()},
                                           {QStringLiteral("interrupted"), isInterrupted}});
    return lines.isEmpty() || print(lines) ? Success : OutputClosed;
}

void reportRanges(const RangeScan &scan, const RangeScanOptions &options)
{
    const QString found =
        counted(static_cast<qint64>(scan.ranges().size()), "range") + QStringLiteral(" found");
    if (scan.scannedTo() < options.first)
        report(QStringLiteral("%1; no address was asked to the end").arg(found));
    else
        report(QStringLiteral("%1 up to %2%3")
                   .arg(found, options.probe.address.areaName, QString::number(scan.scannedTo())));
}

} // namespace

int scanRanges(Session &session, const RangeScanOptions &options)
{
    QByteArray data;
    RangeScan scan(options.probe, [&](const Items &items) { return askForRange(session, items, data); });
    Progress progress(options.probe.address.areaName, options.last - options.first + 1);
    InterruptibleRun run(session, [&](const QString &wait) { progress.showNote(wait); });
    const bool isComplete = scan.run(options.first, options.last, [&](int number) {
        progress.show(number - options.first);
        return !run.isInterrupted();
    });
    int code = scan.ranges().empty() ? ExceptionReply : Success;
    if (run.isInterrupted()) {
        reportError(QStringLiteral("interrupted"));
    } else if (!isComplete) {
        reportFailure(session, scan.lastItems().label(0));
        code = exitCodeOf(session.failure());
    }
    reportRanges(scan, options);
    const int printed = printRanges(session, scan, options.format, run.isInterrupted());
    report(countsText(session.counts().total()));
    return printed == Success ? run.endOf(code) : printed;
}
