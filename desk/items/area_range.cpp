#include "desk/items/area_range.h"

#include <QRegularExpression>

namespace
{

Area areaNamed(const QString &name)
{
    for (const Area area : {Area::DiscreteInputs, Area::Coils, Area::InputRegisters}) {
        if (name.compare(areaName(area), Qt::CaseInsensitive) == 0)
            return area;
    }
    return Area::HoldingRegisters;
}

} // namespace

QString areaName(Area area)
{
    switch (area) {
    case Area::DiscreteInputs: return QStringLiteral("DI");
    case Area::Coils: return QStringLiteral("DO");
    case Area::InputRegisters: return QStringLiteral("IR");
    case Area::HoldingRegisters: break;
    }
    return QStringLiteral("HR");
}

QString rangeText(const AreaRange &range)
{
    const QString first = QStringLiteral("%1-%2%3").arg(QString::number(range.station), areaName(range.area),
                                                        QString::number(range.first + 1));
    return range.last == range.first ? first : first + QStringLiteral("..") + QString::number(range.last + 1);
}

Result<AreaRange> parseAreaRange(const QString &text)
{
    static const QRegularExpression pattern(
        QStringLiteral("^(?:(\\d{1,3})-)?(DI|DO|IR|HR)(\\d{1,5})(?:\\.\\.(\\d{1,5}))?$"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = pattern.match(text);
    AreaRange range;
    range.station = match.captured(1).toInt();
    range.area = areaNamed(match.captured(2));
    range.first = match.captured(3).toInt() - 1;
    range.last = match.captured(4).isEmpty() ? range.first : match.captured(4).toInt() - 1;
    if (!match.hasMatch() || range.station > modbus::MaxStationNumber || range.first < 0 ||
        range.last < range.first || range.last >= modbus::AddressSpace)
        return Error{QStringLiteral("\"%1\": expected addresses such as HR10 or 2-DO5..20").arg(text)};
    return range;
}
