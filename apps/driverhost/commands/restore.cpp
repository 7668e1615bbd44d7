#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/console/item_options.h"
#include "apps/driverhost/console/link_options.h"
#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/console/question.h"
#include "apps/driverhost/runs/restore_run.h"

namespace
{

const CommandLine::Texts Texts = {
    "restore",
    "FILE [rtutcp://HOST:PORT/STATION|@NAME]",
    "Puts back what a snapshot holds: reads it once more, shows what would change, asks, writes nothing but\n"
    "what differs, and reads that back. Inputs are never written, nor is what the slave lacked or lacks. A\n"
    "failure ends it; then it says what was written, what perhaps was, and what was not. Without a target "
    "it\n"
    "is the one that the snapshot was taken of.",
    "  driverhost restore boiler.snapshot --dry-run\n"
    "  driverhost restore boiler.snapshot @second --yes",
};

} // namespace

Job prepareRestore(const QStringList &arguments)
{
    CommandLine line(Texts);
    line.addOptions({
        {QStringLiteral("dry-run"), QStringLiteral("Show what would change and write nothing.")},
        {QStringLiteral("yes"), QStringLiteral("Write without asking.")},
        {QStringLiteral("one-by-one"),
         QStringLiteral(
             "Write register by register with function 6, coil by coil with function 5, for slaves "
             "without 16 and 15.")},
        formatOption(),
    });
    line.addOptions(linkOptions());
    if (const std::optional<int> end = line.parse(arguments))
        return *end;

    const SnapshotAndLink given = snapshotAndLink(line);
    RestoreOptions options;
    options.isDryRun = line.isSet("dry-run");
    options.mayWrite = line.isSet("yes");
    options.style = line.isSet("one-by-one") ? WriteStyle::OneByOne : WriteStyle::Together;
    options.format = formatOf(line);
    if (options.isDryRun && options.mayWrite)
        line.addError(QStringLiteral("--dry-run writes nothing that --yes could allow"));
    if (!options.isDryRun && !options.mayWrite && !canAsk())
        line.addError(QStringLiteral("standard input is no terminal to ask on; expected --yes or --dry-run"));
    if (!line.isValid())
        return line.reportUsageError();
    return {given.link, {}, [=](Session &session) { return restore(session, given, options); }};
}
