#include "apps/driverdesk/slave/slave_values_model.h"

#include <algorithm>

namespace
{

const int MaxPeriod = 3600 * 1000;

int largestOf(const SlaveValue &value)
{
    return isBitArea(value.area) ? 1 : 0xFFFF;
}

// Registers take negative numbers as their two's complement.
std::optional<int> numberOf(const QString &text, int min, int max)
{
    bool isNumber = false;
    const int number = text.trimmed().toInt(&isNumber, 0);
    return isNumber && number >= min && number <= max ? std::optional<int>(number) : std::nullopt;
}

} // namespace

void SlaveValuesModel::setValues(std::vector<SlaveValue> values)
{
    beginResetModel();
    m_values = std::move(values);
    endResetModel();
}

bool SlaveValuesModel::isKnown(int station, const AreaRange &range, int offset) const
{
    return std::any_of(m_values.begin(), m_values.end(), [&](const SlaveValue &value) {
        return value.station == station && value.area == range.area && value.offset == offset;
    });
}

Result<> SlaveValuesModel::addRange(const QString &text, int station)
{
    const Result<AreaRange> range = parseAreaRange(text.trimmed());
    if (!range)
        return range.error();
    const int asked = range->station == 0 ? station : range->station;
    std::vector<SlaveValue> added;
    for (int offset = range->first; offset <= range->last; ++offset) {
        if (!isKnown(asked, *range, offset))
            added.push_back({asked, range->area, static_cast<quint16>(offset), 0, {}});
    }
    if (m_values.size() + added.size() > MaxValues)
        return Error{QStringLiteral("\"%1\": the table has %2 values at most").arg(text).arg(MaxValues)};
    if (added.empty())
        return {};
    beginInsertRows({}, rowCount(), rowCount() + int(added.size()) - 1);
    m_values.insert(m_values.end(), added.begin(), added.end());
    endInsertRows();
    return {};
}

void SlaveValuesModel::remove(const std::vector<int> &rows)
{
    std::vector<int> falling = rows;
    std::sort(falling.rbegin(), falling.rend());
    for (const int row : falling) {
        beginRemoveRows({}, row, row);
        m_values.erase(m_values.begin() + row);
        endRemoveRows();
    }
}

void SlaveValuesModel::takeNumbers(const std::vector<quint16> &numbers)
{
    const size_t count = std::min(numbers.size(), m_values.size());
    bool isChanged = false;
    for (size_t i = 0; i < count; ++i) {
        isChanged = isChanged || m_values[i].value != numbers[i];
        m_values[i].value = numbers[i];
    }
    if (isChanged)
        emit dataChanged(index(0, static_cast<int>(SlaveColumn::Value)),
                         index(rowCount() - 1, static_cast<int>(SlaveColumn::Value)));
}

int SlaveValuesModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_values.size());
}

int SlaveValuesModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : columns();
}

QVariant SlaveValuesModel::data(const QModelIndex &index, int role) const
{
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return {};
    const SlaveValue &value = m_values[static_cast<size_t>(index.row())];
    const Movement &movement = value.movement;
    const bool isMoving = movement.kind != Movement::None;
    switch (static_cast<SlaveColumn>(index.column())) {
    case SlaveColumn::Station: return QString::number(value.station);
    case SlaveColumn::Address: return areaName(value.area) + QString::number(value.offset + 1);
    case SlaveColumn::Value: return QString::number(value.value);
    case SlaveColumn::Movement: return movementNames().at(movement.kind);
    case SlaveColumn::Min: return isMoving ? QString::number(movement.min) : QString();
    case SlaveColumn::Max: return isMoving ? QString::number(movement.max) : QString();
    case SlaveColumn::Period: break;
    }
    return isMoving ? QString::number(movement.period / 1000.0) : QString();
}

bool SlaveValuesModel::setData(const QModelIndex &index, const QVariant &text, int role)
{
    if (role != Qt::EditRole || !index.isValid())
        return false;
    SlaveValue &value = m_values[static_cast<size_t>(index.row())];
    const auto column = static_cast<SlaveColumn>(index.column());
    if (!setNumber(value, column, text.toString()))
        return false;
    emit dataChanged(this->index(index.row(), 0), this->index(index.row(), columns() - 1));
    if (column == SlaveColumn::Value)
        emit numberSet(index.row());
    return true;
}

bool SlaveValuesModel::setNumber(SlaveValue &value, SlaveColumn column, const QString &text) const
{
    const int largest = largestOf(value);
    const int smallest = isBitArea(value.area) ? 0 : -0x8000;
    switch (column) {
    case SlaveColumn::Station:
    case SlaveColumn::Address: return false;
    case SlaveColumn::Movement: {
        const int kind = int(movementNames().indexOf(text));
        if (kind < 0)
            return false;
        value.movement.kind = static_cast<Movement::Kind>(kind);
        value.movement.max = std::min(value.movement.max, largest);
        return true;
    }
    case SlaveColumn::Period: {
        bool isNumber = false;
        const double seconds = text.toDouble(&isNumber);
        if (!isNumber || seconds * 1000 < 1 || seconds * 1000 > MaxPeriod)
            return false;
        value.movement.period = static_cast<int>(seconds * 1000);
        return true;
    }
    case SlaveColumn::Value:
    case SlaveColumn::Min:
    case SlaveColumn::Max: break;
    }
    const std::optional<int> number = numberOf(text, smallest, largest);
    if (!number)
        return false;
    if (column == SlaveColumn::Value)
        value.value = static_cast<quint16>(*number & 0xFFFF);
    else
        (column == SlaveColumn::Min ? value.movement.min : value.movement.max) = *number;
    return true;
}

Qt::ItemFlags SlaveValuesModel::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    return index.column() >= static_cast<int>(SlaveColumn::Value) ? flags | Qt::ItemIsEditable : flags;
}

QVariant SlaveValuesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (static_cast<SlaveColumn>(section)) {
    case SlaveColumn::Station: return tr("Station");
    case SlaveColumn::Address: return tr("Address");
    case SlaveColumn::Value: return tr("Value");
    case SlaveColumn::Movement: return tr("Movement");
    case SlaveColumn::Min: return tr("From");
    case SlaveColumn::Max: return tr("To");
    case SlaveColumn::Period: break;
    }
    return tr("Period [s]");
}
