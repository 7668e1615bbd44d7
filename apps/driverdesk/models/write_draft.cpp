#include "apps/driverdesk/models/write_draft.h"

#include "apps/driverhost/runs/write_request.h"
#include "desk/types/value_bits.h"

#include <limits>

namespace
{

const int MaxSwitches = 16;

Point oneValueOf(const PointRow &row)
{
    Point point = *row.point;
    point.at = partOf(point.at, row.index, 1);
    return point;
}

quint64 lowestBits(int bits)
{
    return bits >= 64 ? std::numeric_limits<quint64>::max() : (quint64(1) << bits) - 1;
}

} // namespace

WriteDraft::WriteDraft(const PointRow &row) : m_point(oneValueOf(row)), m_station(row.station)
{
    m_problem = problemWithWrite(m_point.at.items);
    if (m_problem.isEmpty())
        m_problem = checkWritable(m_point.at).errorText();
    if (m_problem.isEmpty() && m_station == modbus::BroadcastStation)
        m_problem = problemWithBroadcast(m_point.at.items);
}

QString WriteDraft::label() const
{
    const QString address = m_point.at.label(0);
    const QString station = QStringLiteral("station %1").arg(m_station);
    return m_point.name.isEmpty() ? QStringLiteral("%1, %2").arg(address, station)
                                  : QStringLiteral("%1 (%2, %3)").arg(m_point.name, address, station);
}

QString WriteDraft::expectedText() const
{
    const QString range = rangeText();
    QString text = m_point.at.kindName();
    if (!range.isEmpty())
        text += QStringLiteral(", ") + range;
    if (!m_point.unit.isEmpty())
        text += QLatin1Char(' ') + m_point.unit;
    if (!m_point.states.isEmpty() && !m_point.states.isOfBits())
        text += QStringLiteral("; or ") + m_point.states.names().join(QStringLiteral(", "));
    return text;
}

QString WriteDraft::rangeText() const
{
    const ValueType &type = m_point.at.type;
    quint64 low = 0;
    quint64 high = lowestBits(type.bits);
    switch (type.meaning) {
    case Meaning::Bit: return QStringLiteral("0 or 1");
    case Meaning::Float: return QStringLiteral("any number");
    case Meaning::Text: return QStringLiteral("at most %1 bytes").arg(type.bytes());
    case Meaning::Bcd: high = 0x9999999999999999U & lowestBits(type.bits); break;
    case Meaning::Signed:
        low = quint64(1) << (type.bits - 1);
        high = low - 1;
        break;
    case Meaning::Unsigned:
    case Meaning::Hex:
    case Meaning::Binary: break;
    }
    const auto shown = [&](quint64 bits) { return shownOf(m_point, ::valueOf(bits, type.bytes())).text; };
    return QStringLiteral("%1 to %2").arg(shown(low), shown(high));
}

int WriteDraft::switches() const
{
    const ValueType &type = m_point.at.type;
    if (type.isBit())
        return 1;
    const bool isWhole = type.meaning == Meaning::Unsigned || type.meaning == Meaning::Signed ||
                         type.meaning == Meaning::Hex || type.meaning == Meaning::Binary;
    const bool hasStates = !m_point.states.isEmpty() && !m_point.states.isOfBits();
    return isWhole && !hasStates && m_point.scaling.isNeutral() && type.bits <= MaxSwitches ? type.bits : 0;
}

QString WriteDraft::switchName(int bit) const
{
    if (m_point.at.type.isBit())
        return QStringLiteral("on");
    const QString name = m_point.states.isOfBits() ? m_point.states.nameOf(qint64(1) << bit) : QString();
    return name.isEmpty() || name == QLatin1String("-") ? QString::number(bit)
                                                        : QStringLiteral("%1 %2").arg(bit).arg(name);
}

Result<QByteArray> WriteDraft::valueOf(const QString &text, bool mayRound) const
{
    if (!m_problem.isEmpty())
        return Error{m_problem};
    return parsePointValue(m_point, text.trimmed(), mayRound);
}

QString WriteDraft::textOfBits(quint64 bits) const
{
    return textOf(::valueOf(bits, m_point.at.type.bytes()), m_point.at.type);
}

std::optional<quint64> WriteDraft::bitsOf(const QString &text) const
{
    const Result<QByteArray> value = valueOf(text, false);
    return value ? std::optional<quint64>(::bitsOf(*value)) : std::nullopt;
}

WriteOrder WriteDraft::order(const QByteArray &value, bool isPreview) const
{
    return {0, m_point, value, isPreview};
}
