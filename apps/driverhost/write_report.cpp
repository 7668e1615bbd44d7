#include "write_report.h"

#include "trace_frame.h"

#include <set>

namespace
{

const int ReadCoils = 1;
const int ReadInputRegisters = 4;
const int WriteCoil = 5;
const int WriteRegister = 6;
const int WriteCoils = 15;

bool isRead(const Exchange &exchange)
{
    const int function = byteAt(exchange.request, 1);
    return function >= ReadCoils && function <= ReadInputRegisters;
}

bool isConfirmed(const Exchange &exchange)
{
    return hasGoodCrc(exchange.reply) && exchange.reply.left(2) == exchange.request.left(2);
}

// Refused with an exception, and so surely not executed.
bool isRefused(const Exchange &exchange)
{
    const int exceptionFlag = 0x80;
    return hasGoodCrc(exchange.reply) &&
           byteAt(exchange.reply, 1) == (byteAt(exchange.request, 1) | exceptionFlag);
}

int quantityOf(const Exchange &exchange)
{
    const int function = byteAt(exchange.request, 1);
    return function == WriteCoil || function == WriteRegister ? 1 : wordAt(exchange.request, 4);
}

QString areaOf(const Exchange &exchange)
{
    const int function = byteAt(exchange.request, 1);
    return function == WriteCoil || function == WriteCoils ? QStringLiteral("DO") : QStringLiteral("HR");
}

// "HR1", "HR1..5 and HR9".
QString rangesText(const QString &area, const std::set<int> &offsets)
{
    QStringList ranges;
    for (auto offset = offsets.begin(); offset != offsets.end();) {
        const int first = *offset;
        int last = first;
        while (++offset != offsets.end() && *offset == last + 1)
            ++last;
        ranges += area + QString::number(first + 1) +
                  (last > first ? QStringLiteral("..") + QString::number(last + 1) : QString());
    }
    return ranges.join(QStringLiteral(" and "));
}

} // namespace

QStringList writtenBeforeFailure(const std::vector<Exchange> &exchanges)
{
    std::set<int> confirmed;
    std::set<int> unknown;
    QString area;
    for (const Exchange &exchange : exchanges) {
        if (isRead(exchange) || isRefused(exchange))
            continue;
        area = areaOf(exchange);
        std::set<int> &offsets = isConfirmed(exchange) ? confirmed : unknown;
        for (int i = 0; i < quantityOf(exchange); ++i)
            offsets.insert(wordAt(exchange.request, 2) + i);
    }
    for (const int offset : confirmed)
        unknown.erase(offset);

    QStringList lines;
    if (!confirmed.empty())
        lines += QStringLiteral("already written: ") + rangesText(area, confirmed);
    if (!unknown.empty())
        lines += QStringLiteral("sent but not confirmed, perhaps written: ") + rangesText(area, unknown);
    return lines;
}
