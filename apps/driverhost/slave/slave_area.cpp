#include "slave/slave_area.h"

#include <QRegularExpression>

QString areaName(SlaveArea area)
{
    switch (area) {
    case SlaveArea::DiscreteInputs: return QStringLiteral("DI");
    case SlaveArea::Coils: return QStringLiteral("DO");
    case SlaveArea::InputRegisters: return QStringLiteral("IR");
    case SlaveArea::HoldingRegisters: break;
    }
    return QStringLiteral("HR");
}

namespace
{

SlaveArea areaOf(const QString &name)
{
    for (const SlaveArea area : {SlaveArea::DiscreteInputs, SlaveArea::Coils, SlaveArea::InputRegisters}) {
        if (name.compare(areaName(area), Qt::CaseInsensitive) == 0)
            return area;
    }
    return SlaveArea::HoldingRegisters;
}

} // namespace

bool parseAreaRange(const QString &text, AreaRange &range)
{
    static const QRegularExpression pattern(
        QStringLiteral("^(?:(\\d{1,3})-)?(DI|DO|IR|HR)(\\d{1,5})(?:\\.\\.(\\d{1,5}))?$"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return false;
    AreaRange parsed;
    parsed.station = match.captured(1).toInt();
    parsed.area = areaOf(match.captured(2));
    parsed.first = match.captured(3).toInt() - 1;
    parsed.last = match.captured(4).isEmpty() ? parsed.first : match.captured(4).toInt() - 1;
    if (parsed.station > 255 || parsed.first < 0 || parsed.last < parsed.first || parsed.last > 0xFFFF)
        return false;
    range = parsed;
    return true;
}
