#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/console/link_options.h"
#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/runs/snapshot_run.h"
#include "desk/items/number_text.h"
#include "desk/output/summary.h"
#include "desk/snapshot/snapshot_file.h"
#include "desk/time_text.h"

namespace
{

const CommandLine::Texts Texts = {
    "snapshot",
    "[rtutcp://HOST:PORT/STATION|@NAME] RANGE... --output FILE",
    "Keeps what a slave holds in a file: registers and bits of ranges such as HR1..200, DO1..16 and IR5,\n"
    "also of other stations, as 2-HR1..10, and which addresses the slave lacks. The file is text; compare\n"
    "says what has changed since, and restore puts it back.",
    "  driverhost snapshot rtutcp://192.168.0.10:502/5 HR1..200 DO1..16 --output boiler.snapshot",
};

std::vector<AreaRange> rangesFrom(const QStringList &words, int station, CommandLine &line)
{
    std::vector<AreaRange> ranges;
    for (const QString &word : words) {
        Result<AreaRange> range = parseAreaRange(word);
        if (!range) {
            line.addError(QStringLiteral("\"%1\": expected a range such as HR1..200 or 2-DO5").arg(word));
            continue;
        }
        if (!word.contains(QLatin1Char('-')))
            range->station = station;
        if (range->station == modbus::BroadcastStation)
            line.addError(QStringLiteral("\"%1\": nobody replies to station 0").arg(word));
        const std::optional<AreaRange> other = overlapping(ranges, *range);
        if (other)
            line.addError(QStringLiteral("\"%1\" overlaps %2").arg(word, rangeText(*other)));
        ranges.push_back(*range);
    }
    if (ranges.empty())
        line.addError(QStringLiteral("expected a range such as HR1..200"));
    return ranges;
}

int keep(Session &session, const LinkSettings &link, const std::vector<AreaRange> &ranges,
         const QString &path)
{
    const QString time = dateAndTimeText(QDateTime::currentDateTime());
    const RangesRead read = readRanges(session, ranges);
    if (read.code != Success) {
        report(QStringLiteral("%1: nothing is kept").arg(path));
        return read.code;
    }
    const Snapshot snapshot{time, targetText(link.target()), read.ranges};
    const Result<> written = writeSnapshotFile(path, snapshot);
    if (!written) {
        reportError(written.errorText());
        return OtherFailure;
    }
    const int missing = missingIn(snapshot);
    report(QStringLiteral("%1: %2 kept%3")
               .arg(path, counted(valuesIn(snapshot) - missing, "value"),
                    missing == 0 ? QString()
                                 : QStringLiteral("; the slave lacks %1 of the addresses").arg(missing)));
    report(countsText(session.counts().total()));
    return Success;
}

} // namespace

Job prepareSnapshot(const QStringList &arguments)
{
    CommandLine line(Texts);
    line.addOptions({{QStringLiteral("output"),
                      QStringLiteral("The file; an earlier snapshot is written over, nothing else."),
                      QStringLiteral("FILE")}});
    line.addOptions(linkOptions());
    if (const std::optional<int> end = line.parse(arguments))
        return *end;

    QStringList words = line.words();
    const LinkSettings link = linkSettings(line, words);
    const std::vector<AreaRange> ranges = rangesFrom(words, link.channel.station, line);
    const QString path = line.text("output");
    if (path.isEmpty())
        line.addError(QStringLiteral("expected --output FILE"));
    const Result<> replaceable = checkReplaceable(path);
    if (!path.isEmpty() && !replaceable)
        line.addError(replaceable.errorText());
    if (!line.isValid())
        return line.reportUsageError();
    return {link, {}, [=](Session &session) { return keep(session, link, ranges, path); }};
}
