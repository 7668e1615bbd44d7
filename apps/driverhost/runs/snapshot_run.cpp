#include "apps/driverhost/runs/snapshot_run.h"

#include "apps/driverhost/console/interruptible_run.h"
#include "apps/driverhost/console/link_options.h"
#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/runs/range_answer.h"
#include "apps/driverhost/terminal/progress.h"
#include "desk/items/number_text.h"
#include "desk/snapshot/snapshot_file.h"
#include "desk/snapshot/snapshot_reading.h"

#include <algorithm>

namespace
{

qint64 lengthOf(const std::vector<AreaRange> &ranges)
{
    qint64 size = 0;
    for (const AreaRange &range : ranges)
        size += range.last - range.first + 1;
    return size;
}

} // namespace

SnapshotAndLink snapshotAndLink(CommandLine &line)
{
    QStringList words = line.words();
    const auto file =
        std::find_if(words.begin(), words.end(), [](const QString &word) { return !hasTarget({word}); });
    if (file == words.end()) {
        line.addError(QStringLiteral("expected the file of a snapshot"));
        return {};
    }
    SnapshotAndLink given{*file, {}, {}};
    words.erase(file);
    const Result<Snapshot> kept = readSnapshotFile(given.path);
    if (!kept) {
        line.addError(kept.errorText());
        return given;
    }
    Result<TargetChoice> ofFile = targetCalled(kept->target);
    if (ofFile)
        ofFile->origin = QStringLiteral("by ") + given.path;
    given.link = linkSettings(line, words, ofFile.valueOr({}));
    if (!words.isEmpty())
        line.addError(QStringLiteral("\"%1\": expected one file and at most one target").arg(words.first()));
    given.kept = movedTo(*kept, given.link.channel.station);
    return given;
}

RangesRead readRanges(Session &session, const std::vector<AreaRange> &ranges)
{
    session.setRepeatsRefused(false);
    SnapshotReading reading(
        [&](const Items &items, QByteArray &data) { return askForRange(session, items, data); });
    Progress progress(QStringLiteral("reading"), lengthOf(ranges));
    InterruptibleRun run(session, [&](const QString &wait) { progress.showNote(wait); });
    RangesRead read;
    std::optional<std::vector<KeptRange>> kept = reading.read(ranges, [&](int done) {
        progress.show(done);
        return !run.isInterrupted();
    });
    if (run.isInterrupted()) {
        reportError(QStringLiteral("interrupted"));
        read.code = Interrupted;
        return read;
    }
    if (!kept) {
        reportFailure(session, reading.lastItems().label(0));
        read.code = exitCodeOf(session.failure());
        return read;
    }
    read.ranges = std::move(*kept);
    read.limits = reading.limits();
    return read;
}

Compared compareWith(Session &session, const Snapshot &kept)
{
    const RangesRead now = readRanges(session, rangesOf(kept));
    if (now.code != Success)
        return {{}, {}, now.code};
    return {differencesOf(kept, {{}, {}, now.ranges}), now.limits, Success};
}

QString countText(const std::vector<Difference> &differences, const SnapshotAndLink &given)
{
    return QStringLiteral("%1 of %2 differ%3 from %4, of %5")
        .arg(QString::number(differences.size()), counted(valuesIn(given.kept), "value"),
             differences.size() == 1 ? QStringLiteral("s") : QString(), given.path, given.kept.time);
}
