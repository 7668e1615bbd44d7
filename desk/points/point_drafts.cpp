#include "desk/points/point_drafts.h"

#include "desk/items/address.h"
#include "desk/items/area_range.h"
#include "desk/points/csv_table.h"
#include "desk/types/typed_text.h"

#include <QSet>

namespace
{

class Draft
{
public:
    Draft()
    {
        m_lines += QStringLiteral("name,address,type,order,scale,offset,unit,low,high,states,comment");
    }

    void add(const QString &name, const QString &address, const QString &type)
    {
        if (m_names.contains(name))
            return;
        m_names += name;
        m_lines += QStringLiteral("%1,%2,%3,,,,,,,,").arg(csvCell(name), csvCell(address), type);
    }

    QStringList lines() const { return m_lines; }

private:
    QSet<QString> m_names;
    QStringList m_lines;
};

QString typeNameOf(const Address &address)
{
    if (address.isBitArea() || address.bit >= 0)
        return QStringLiteral("bit");
    return address.highWordFirst ? QStringLiteral("u32") : QStringLiteral("u16");
}

QString withStation(int station, const QString &address)
{
    return station > 0 ? QStringLiteral("%1-%2").arg(QString::number(station), address) : address;
}

} // namespace

QStringList draftOfTags(const QStringList &tags)
{
    Draft draft;
    for (const QString &tag : tags) {
        const Result<TypedText> typed = parseTypedText(tag);
        const Result<Address> address = typed ? parseAddress(typed->address) : Result<Address>(typed.error());
        if (!address)
            continue;
        const QString name = withStation(address->station, address->text());
        draft.add(name, name, typed->type ? nameOf(*typed->type) : typeNameOf(*address));
    }
    return draft.lines();
}

Result<QStringList> draftOfRanges(const QStringList &lines)
{
    Draft draft;
    for (int i = 0; i < lines.size(); ++i) {
        const QString text = lines.at(i).simplified().section(QLatin1Char(' '), 0, 0);
        if (text.isEmpty())
            continue;
        const Result<AreaRange> range = parseAreaRange(text);
        if (!range)
            return Error{QStringLiteral("%1: %2").arg(QString::number(i + 1), range.errorText())};
        for (int offset = range->first; offset <= range->last; ++offset) {
            const QString name =
                withStation(range->station, areaName(range->area) + QString::number(offset + 1));
            draft.add(name, name, isBitArea(range->area) ? QStringLiteral("bit") : QStringLiteral("u16"));
        }
    }
    return draft.lines();
}
