#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/console/item_options.h"
#include "apps/driverhost/console/link_options.h"
#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/runs/snapshot_run.h"
#include "desk/output/difference_form.h"
#include "desk/output/summary.h"

namespace
{

const CommandLine::Texts Texts = {
    "compare",
    "FILE [rtutcp://HOST:PORT/STATION|@NAME]",
    "Reads what a snapshot holds once more and prints what differs, also inputs, and addresses that have "
    "come\n"
    "or gone. The exit code is 0 when nothing does, and 10 otherwise. Without a target it is the one that "
    "the\n"
    "snapshot was taken of; of another one, values of that one's station are compared.",
    "  driverhost compare boiler.snapshot\n"
    "  driverhost compare boiler.snapshot @second --format csv",
};

int printDifferences(const Session &session, const std::vector<Difference> &differences,
                     const SnapshotAndLink &given, OutputFormat format)
{
    QStringList lines;
    std::vector<DifferenceRow> rows;
    for (const Difference &difference : differences) {
        rows.push_back({difference, {}});
        if (format == OutputFormat::Text)
            lines += differenceText(difference);
    }
    if (format != OutputFormat::Text)
        lines = linesOf(rows, false, format);
    if (format == OutputFormat::Json)
        lines +=
            summaryLine(session.counts(), {{QStringLiteral("values"), valuesIn(given.kept)},
                                           {QStringLiteral("different"), static_cast<int>(rows.size())}});
    const int code = differences.empty() ? Success : FoundDifferent;
    return lines.isEmpty() || print(lines) ? code : OutputClosed;
}

} // namespace

Job prepareCompare(const QStringList &arguments)
{
    CommandLine line(Texts);
    line.addOptions({formatOption()});
    line.addOptions(linkOptions());
    if (const std::optional<int> end = line.parse(arguments))
        return *end;

    const SnapshotAndLink given = snapshotAndLink(line);
    const OutputFormat format = formatOf(line);
    if (!line.isValid())
        return line.reportUsageError();
    return {given.link, {}, [=](Session &session) {
                const Compared compared = compareWith(session, given.kept);
                if (compared.code != Success)
                    return compared.code;
                const int code = printDifferences(session, compared.differences, given, format);
                report(countText(compared.differences, given));
                return code;
            }};
}
