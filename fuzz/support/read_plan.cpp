#include "fuzz/support/read_plan.h"

#include "tests/doubles/frames.h"

#include <limits>

namespace fuzz
{

namespace
{

const int MaxRegisters = 125;
const int MaxBits = 2008;
const int AreaSize = 65536;

ReadPlan planRegisters(const Command &command, int station)
{
    const qint64 count = command.count;
    qint64 registers = count;
    const char *text = "can't read any word from ";
    if (command.isBitKind())
        registers = (command.bit + count + 15) / 16;
    if (command.isByteKind()) {
        registers = (count + 1) / 2;
        text = "can't read any byte from ";
    }
    if (command.dataType == DoubleWordItem) {
        registers = 2 * count;
        text = "can't read any double word from ";
    }
    ReadPlan plan;
    if (count < 0 || registers > MaxRegisters || command.offset + registers > AreaSize)
        plan.refusal = refusal(text, QLatin1String(command.area->text), command.offset);
    else
        plan.requests += fieldsFrame(station, command.area->isHolding ? 3 : 4, command.offset,
                                     static_cast<int>(registers));
    return plan;
}

bool addBits(ReadPlan &plan, int station, const QString &area, bool isCoils, int offset, qint64 count)
{
    if (count < 0 || count > MaxBits || offset + count > AreaSize) {
        plan.refusal =
            refusal(qPrintable(QStringLiteral("can't read %1 bits from ").arg(count)), area, offset);
        return false;
    }
    plan.requests += fieldsFrame(station, isCoils ? 1 : 2, offset, static_cast<int>(count));
    return true;
}

// Runs of used addresses, in the order in which the walk meets them; once one was met, lower ones are not.
ReadPlan planUsedBits(const Command &command, int station, bool isInputs, const UsedBits &project)
{
    ReadPlan plan;
    const QString area = QLatin1String(isInputs ? "DI" : "DO");
    if (!project.inputs.contains(station & 0xFF) && !project.coils.contains(station & 0xFF)) {
        plan.refusal = QStringLiteral("invalid address %1-").arg(station) + area;
        return plan;
    }
    const qint64 bits = 8 * qint64(command.count);
    if (bits > std::numeric_limits<int>::max()) {
        addBits(plan, station, area, !isInputs, command.offset, bits);
        return plan;
    }
    const QSet<int> used = (isInputs ? project.inputs : project.coils).value(station & 0xFF);
    int lastMet = -1;
    for (int i = 0; i < bits && i < 2 * AreaSize; ++i) {
        int length = 0;
        const int start = (command.offset + i) % AreaSize;
        while (i + length < bits && start + length > lastMet && start + length < AreaSize &&
               used.contains(start + length))
            ++length;
        if (length == 0)
            continue;
        if (!addBits(plan, station, area, !isInputs, start, length))
            return plan;
        plan.positions += i;
        lastMet = start + length - 1;
        i += length - 1;
    }
    return plan;
}

} // namespace

ReadPlan planRead(const Command &command, int station, const UsedBits &project)
{
    const bool isWholeArea = command.areaIs("HR") || command.areaIs("FN6HR") || command.areaIs("IR");
    if (command.isByteKind() && !isWholeArea)
        return planUsedBits(command, station, command.areaIs("DI"), project);
    if (!command.isBitKind() || !command.area->isBits)
        return planRegisters(command, station);
    ReadPlan plan;
    addBits(plan, station, QLatin1String(command.area->text), command.area->isCoils, command.offset,
            command.count);
    return plan;
}

} // namespace fuzz
