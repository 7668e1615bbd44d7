#include "desk/snapshot/comparison.h"

namespace
{

QString valueText(const std::optional<quint16> &value)
{
    return value ? QString::number(*value) : QStringLiteral("missing");
}

bool isNextOf(const WriteRun &run, const Difference &difference, const RunLimits &limits)
{
    const Address &address = run.items.address;
    const int most = difference.area == Area::Coils ? limits.coils : limits.registers;
    return address.station == difference.station && address.area == difference.area &&
           address.wireOffset() + run.items.count == difference.offset && run.items.count < most;
}

WriteRun beginningAt(const Difference &difference, WriteStyle style)
{
    WriteRun run;
    const bool isCoil = difference.area == Area::Coils;
    run.items.address.station = difference.station;
    run.items.address.area = difference.area;
    run.items.address.areaName = areaName(difference.area);
    if (style == WriteStyle::OneByOne)
        run.items.address.areaName.prepend(isCoil ? QStringLiteral("FN5") : QStringLiteral("FN6"));
    run.items.address.number = difference.offset + 1;
    run.items.kind = isCoil ? BitItem : WordItem;
    run.items.count = 0;
    return run;
}

} // namespace

std::vector<Difference> differencesOf(const Snapshot &kept, const Snapshot &now)
{
    std::vector<Difference> differences;
    for (size_t i = 0; i < kept.ranges.size() && i < now.ranges.size(); ++i) {
        const KeptRange &before = kept.ranges[i];
        const std::vector<std::optional<quint16>> &after = now.ranges[i].values;
        for (size_t j = 0; j < before.values.size() && j < after.size(); ++j) {
            if (before.values[j] != after[j])
                differences.push_back({before.range.station, before.range.area,
                                       before.range.first + static_cast<int>(j), before.values[j], after[j]});
        }
    }
    return differences;
}

QString differenceText(const Difference &difference)
{
    return QStringLiteral("%1-%2%3: was %4, is %5")
        .arg(QString::number(difference.station), areaName(difference.area),
             QString::number(difference.offset + 1), valueText(difference.kept), valueText(difference.now));
}

QString restorationText(const Difference &difference)
{
    return QStringLiteral("%1-%2%3: is %4, becomes %5")
        .arg(QString::number(difference.station), areaName(difference.area),
             QString::number(difference.offset + 1), valueText(difference.now), valueText(difference.kept));
}

bool canBeWritten(const Difference &difference)
{
    return !isInputArea(difference.area) && difference.kept && difference.now;
}

std::vector<WriteRun> writesOf(const std::vector<Difference> &differences, WriteStyle style,
                               const RunLimits &limits)
{
    std::vector<WriteRun> runs;
    for (const Difference &difference : differences) {
        if (!canBeWritten(difference))
            continue;
        if (runs.empty() || !isNextOf(runs.back(), difference, limits))
            runs.push_back(beginningAt(difference, style));
        ++runs.back().items.count;
        runs.back().values.push_back(*difference.kept);
    }
    return runs;
}
