#include "desk/link/write_report.h"

#include "desk/items/area_range.h"
#include "desk/wire/rtu_frame.h"

#include <set>

namespace
{

bool isConfirmed(const Exchange &exchange)
{
    return hasGoodCrc(exchange.reply) && exchange.reply.left(2) == exchange.request.left(2);
}

// Refused with an exception, and so surely not executed.
bool isRefused(const Exchange &exchange)
{
    return hasGoodCrc(exchange.reply) &&
           functionOf(exchange.reply) == (functionOf(exchange.request) | modbus::ExceptionFlag);
}

int quantityOf(const QByteArray &request)
{
    return modbus::isWriteSingle(functionOf(request)) ? 1 : wordAt(request, 4);
}

Area areaOf(const QByteArray &request)
{
    const int function = functionOf(request);
    const bool isCoils = function == modbus::WriteSingleCoil || function == modbus::WriteMultipleCoils;
    return isCoils ? Area::Coils : Area::HoldingRegisters;
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
        if (modbus::isRead(functionOf(exchange.request)) || isRefused(exchange))
            continue;
        area = areaName(areaOf(exchange.request));
        std::set<int> &offsets = isConfirmed(exchange) ? confirmed : unknown;
        for (int i = 0; i < quantityOf(exchange.request); ++i)
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
