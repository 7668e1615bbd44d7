#include "desk/points/point_row.h"

namespace
{

class RowReader
{
public:
    RowReader(const PointCells &cells, std::vector<RowProblem> &problems)
        : m_cells(cells), m_problems(problems)
    {
    }

    Point read()
    {
        readName();
        readItems();
        readScaling();
        m_point.unit = cell(Column::Unit);
        m_point.low = number(Column::Low);
        m_point.high = number(Column::High);
        if (m_point.low && m_point.high && *m_point.low > *m_point.high)
            fail(Column::High, QStringLiteral("\"%1\": expected no less than low").arg(cell(Column::High)));
        readStates();
        m_point.comment = cell(Column::Comment);
        return m_point;
    }

private:
    QString cell(Column column) const
    {
        const auto found = m_cells.find(column);
        return found == m_cells.end() ? QString() : found->second;
    }

    void fail(Column column, const QString &text) { m_problems.push_back({column, text}); }

    void readName()
    {
        m_point.name = cell(Column::Name);
        static const QString reserved = QStringLiteral("=*?[]\"");
        for (const QChar character : qAsConst(m_point.name)) {
            if (reserved.contains(character))
                return fail(Column::Name, QStringLiteral("\"%1\": expected a name without %2")
                                              .arg(m_point.name, QString(character)));
        }
        if (m_point.name.isEmpty())
            fail(Column::Name, QStringLiteral("expected a name"));
    }

    // Type and order may stand with the address or in columns of their own.
    void readItems()
    {
        const Result<TypedText> typed = parseTypedText(cell(Column::Address));
        const Result<Address> address = typed ? parseAddress(typed->address) : Result<Address>(typed.error());
        if (!address)
            return fail(Column::Address, address.errorText());
        if (typed->count)
            return fail(
                Column::Address,
                QStringLiteral("\"%1\": a point is one value; expected no count").arg(cell(Column::Address)));
        const std::optional<ValueType> type = readType(*typed, *address);
        if (!type)
            return;
        const std::optional<QString> order = readOrder(*typed, *type);
        if (!order)
            return;
        const Result<TypedItems> items = typedItems(*address, *type, 1, *order);
        if (!items)
            return fail(atFault(typedItems(*address, *type) ? Column::Order : Column::Type),
                        items.errorText());
        m_point.at = *items;
    }

    // What a column does not say, the address says.
    Column atFault(Column column) const { return cell(column).isEmpty() ? Column::Address : column; }

    std::optional<ValueType> readType(const TypedText &typed, const Address &address)
    {
        const QString text = cell(Column::Type);
        if (text.isEmpty())
            return typed.type.value_or(defaultType(address));
        const Result<ValueType> type = parseType(text);
        if (!type)
            fail(Column::Type, type.errorText());
        else if (typed.type && !(*typed.type == *type))
            fail(Column::Type,
                 QStringLiteral("type \"%1\": the address says %2").arg(text, nameOf(*typed.type)));
        else
            return *type;
        return std::nullopt;
    }

    std::optional<QString> readOrder(const TypedText &typed, const ValueType &type)
    {
        const QString text = cell(Column::Order);
        if (text.isEmpty())
            return typed.order;
        const Result<ByteOrder> order = parseOrder(text, type);
        if (!order)
            fail(Column::Order, order.errorText());
        else if (!typed.order.isEmpty() && typed.order.compare(text, Qt::CaseInsensitive) != 0)
            fail(Column::Order, QStringLiteral("order \"%1\": the address says %2").arg(text, typed.order));
        else
            return text;
        return std::nullopt;
    }

    void readScaling()
    {
        const QString scale = cell(Column::Scale);
        const QString offset = cell(Column::Offset);
        const Result<Scaling> factor = parseScaling(scale, {});
        const Result<Scaling> both = parseScaling(scale, offset);
        if (!both)
            return fail(factor ? Column::Offset : Column::Scale, both.errorText());
        const Meaning meaning = m_point.at.type.meaning;
        const bool isNumber = meaning == Meaning::Unsigned || meaning == Meaning::Signed ||
                              meaning == Meaning::Float || meaning == Meaning::Bcd;
        if (!isNumber && !both->isNeutral())
            return fail(factor->isNeutral() ? Column::Offset : Column::Scale,
                        QStringLiteral("a %1 is not scaled; expected a type such as u16, i32 or f32")
                            .arg(nameOf(m_point.at.type)));
        m_point.scaling = *both;
    }

    std::optional<double> number(Column column)
    {
        const QString text = cell(column);
        if (text.isEmpty())
            return std::nullopt;
        const std::optional<double> number = parseNumberText(text);
        if (!number)
            fail(column, QStringLiteral("\"%1\": expected a number").arg(text));
        return number;
    }

    void readStates()
    {
        const QString text = cell(Column::States);
        const ValueType &type = m_point.at.type;
        if (text.isEmpty())
            return;
        if (type.isText() || type.meaning == Meaning::Float)
            return fail(
                Column::States,
                QStringLiteral("a %1 has no states; expected a type such as u16 or bit").arg(nameOf(type)));
        const Result<States> states = States::parse(text, type.bits);
        if (!states)
            return fail(Column::States, states.errorText());
        m_point.states = *states;
    }

    static ValueType defaultType(const Address &address)
    {
        if (address.isBitArea() || address.bit >= 0)
            return {Meaning::Bit, 1};
        return {Meaning::Unsigned, address.highWordFirst ? 2 * modbus::RegisterBits : modbus::RegisterBits};
    }

    const PointCells &m_cells;
    std::vector<RowProblem> &m_problems;
    Point m_point;
};

} // namespace

const QStringList &columnTitles()
{
    static const QStringList titles{
        QStringLiteral("name"),  QStringLiteral("address"), QStringLiteral("type"),   QStringLiteral("order"),
        QStringLiteral("scale"), QStringLiteral("offset"),  QStringLiteral("unit"),   QStringLiteral("low"),
        QStringLiteral("high"),  QStringLiteral("states"),  QStringLiteral("comment")};
    return titles;
}

Point pointOf(const PointCells &cells, std::vector<RowProblem> &problems)
{
    return RowReader(cells, problems).read();
}
