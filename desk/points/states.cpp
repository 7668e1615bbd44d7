#include "desk/points/states.h"

#include <algorithm>

QString States::nameOf(qint64 value) const
{
    if (!m_isOfBits) {
        const auto found = m_names.find(value);
        return found == m_names.end() ? QString() : found->second;
    }
    QStringList set;
    for (const auto &[bit, name] : m_names) {
        if ((static_cast<quint64>(value) >> bit & 1) != 0)
            set += name;
    }
    return set.isEmpty() ? QStringLiteral("-") : set.join(QStringLiteral(", "));
}

std::optional<qint64> States::valueOf(const QString &name) const
{
    if (m_isOfBits)
        return std::nullopt;
    for (const auto &[value, known] : m_names) {
        if (known.compare(name, Qt::CaseInsensitive) == 0)
            return value;
    }
    return std::nullopt;
}

QStringList States::names() const
{
    QStringList names;
    for (const auto &[value, name] : m_names)
        names += name;
    return names;
}

Result<States> States::parse(const QString &text, int bits)
{
    States states;
    for (const QString &part : text.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const int equal = int(part.indexOf(QLatin1Char('=')));
        const int colon = int(part.indexOf(QLatin1Char(':')));
        const bool isBit = colon >= 0 && (equal < 0 || colon < equal);
        const int at = isBit ? colon : equal;
        bool isNumber = false;
        const qint64 number = part.left(at).trimmed().toLongLong(&isNumber, 0);
        const QString name = part.mid(at + 1).trimmed();
        if (at < 0 || !isNumber || name.isEmpty())
            return Error{QStringLiteral("\"%1\": expected a value and its name such as 1=running, or a bit "
                                        "and its name such as 3:fault")
                             .arg(part.trimmed())};
        if (isBit && (number < 0 || number >= bits))
            return Error{
                QStringLiteral("\"%1\": expected a bit from 0 to %2").arg(part.trimmed()).arg(bits - 1)};
        if (!states.isEmpty() && states.m_isOfBits != isBit)
            return Error{
                QStringLiteral("\"%1\": names of values (=) and names of bits (:) do not go together")
                    .arg(part.trimmed())};
        if (!states.m_names.emplace(number, name).second)
            return Error{QStringLiteral("\"%1\": %2 has a name already").arg(part.trimmed()).arg(number)};
        states.m_isOfBits = isBit;
    }
    return states;
}
