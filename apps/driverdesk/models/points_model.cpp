#include "apps/driverdesk/models/points_model.h"

#include <algorithm>

namespace
{

const PointSample Unread;

bool isNumeric(PointColumn column)
{
    switch (column) {
    case PointColumn::Offset:
    case PointColumn::Station:
    case PointColumn::Value:
    case PointColumn::Age:
    case PointColumn::Latency:
    case PointColumn::Attempts:
    case PointColumn::Errors: return true;
    default: return false;
    }
}

QString countText(quint32 count)
{
    return count == 0 ? QString() : QString::number(count);
}

} // namespace

void PointsModel::setRows(std::vector<PointRow> rows)
{
    beginResetModel();
    m_rows = std::move(rows);
    m_snapshot = std::make_shared<const Snapshot>();
    endResetModel();
}

void PointsModel::setSnapshot(const SnapshotPointer &snapshot, qint64 now)
{
    m_snapshot = snapshot;
    m_now = now;
    tellMoved();
}

void PointsModel::setNow(qint64 now)
{
    m_now = now;
    tellMoved();
}

void PointsModel::tellMoved()
{
    if (!m_rows.empty())
        emit dataChanged(index(0, static_cast<int>(PointColumn::Value)),
                         index(int(m_rows.size()) - 1, static_cast<int>(PointColumn::State)));
}

const PointSample &PointsModel::sampleOf(int row) const
{
    const auto index = static_cast<size_t>(row);
    return index < m_snapshot->samples.size() ? m_snapshot->samples[index] : Unread;
}

PointView PointsModel::viewOf(int row) const
{
    return {sampleOf(row), *m_snapshot, m_now};
}

int PointsModel::count(PointState state) const
{
    int number = 0;
    for (int row = 0; row < int(m_rows.size()); ++row)
        number += viewOf(row).state() == state ? 1 : 0;
    return number;
}

QString PointsModel::titleOf(PointColumn column)
{
    switch (column) {
    case PointColumn::Name: return tr("Name");
    case PointColumn::Address: return tr("Address");
    case PointColumn::Offset: return tr("Offset");
    case PointColumn::Station: return tr("Station");
    case PointColumn::Value: return tr("Value");
    case PointColumn::Type: return tr("Type");
    case PointColumn::Age: return tr("Age");
    case PointColumn::Latency: return tr("Latency");
    case PointColumn::Attempts: return tr("Attempts");
    case PointColumn::Errors: return tr("Errors");
    case PointColumn::State: break;
    }
    return tr("State");
}

bool PointsModel::isMoving(PointColumn column)
{
    return column == PointColumn::Value || column >= PointColumn::Age;
}

int PointsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int PointsModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : columns();
}

QVariant PointsModel::data(const QModelIndex &index, int role) const
{
    const auto column = static_cast<PointColumn>(index.column());
    switch (role) {
    case Qt::DisplayRole: return textOf(index.row(), column);
    case Qt::ToolTipRole: return toolTipOf(index.row(), column);
    case Qt::TextAlignmentRole:
        return QVariant(isNumeric(column) ? Qt::AlignRight | Qt::AlignVCenter
                                          : Qt::AlignLeft | Qt::AlignVCenter);
    case StateRole: return static_cast<int>(viewOf(index.row()).state());
    case SortRole: return sortKeyOf(index.row(), column);
    case SearchRole: {
        const PointRow &row = m_rows[static_cast<size_t>(index.row())];
        return QStringList{row.point->name, row.point->at.label(row.index), row.point->unit,
                           row.point->comment}
            .join(QLatin1Char('\n'));
    }
    default: return {};
    }
}

QString PointsModel::textOf(int row, PointColumn column) const
{
    const PointRow &shown = m_rows[static_cast<size_t>(row)];
    const PointSample &sample = sampleOf(row);
    switch (column) {
    case PointColumn::Name: return shown.point->name;
    case PointColumn::Address: return shown.point->at.label(shown.index);
    case PointColumn::Offset: return QString::number(shown.point->at.offsetOf(shown.index));
    case PointColumn::Station: return QString::number(shown.station);
    case PointColumn::Value: return viewOf(row).valueText();
    case PointColumn::Type: return shown.point->at.kindName();
    case PointColumn::Age: return viewOf(row).ageText();
    case PointColumn::Latency: return viewOf(row).latencyText();
    case PointColumn::Attempts: return countText(static_cast<quint32>(sample.attempts));
    case PointColumn::Errors: return countText(sample.errors);
    case PointColumn::State: break;
    }
    return viewOf(row).stateText();
}

QVariant PointsModel::sortKeyOf(int row, PointColumn column) const
{
    const PointRow &shown = m_rows[static_cast<size_t>(row)];
    const PointSample &sample = sampleOf(row);
    switch (column) {
    case PointColumn::Name: return shown.point->name.isEmpty() ? labelOf(shown) : shown.point->name;
    case PointColumn::Offset: return shown.point->at.offsetOf(shown.index);
    case PointColumn::Station: return shown.station;
    case PointColumn::Value: return sample.number == sample.number ? QVariant(sample.number) : sample.text;
    case PointColumn::Age: return viewOf(row).age();
    case PointColumn::Latency: return sample.latency;
    case PointColumn::Attempts: return sample.attempts;
    case PointColumn::Errors: return sample.errors;
    default: return textOf(row, column);
    }
}

QVariant PointsModel::toolTipOf(int row, PointColumn column) const
{
    const PointRow &shown = m_rows[static_cast<size_t>(row)];
    if (column == PointColumn::Name)
        return shown.point->comment;
    if (column == PointColumn::Value && !sampleOf(row).raw.isEmpty())
        return tr("%1 (raw %2)").arg(viewOf(row).valueText(), sampleOf(row).raw);
    return textOf(row, column);
}

QVariant PointsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return titleOf(static_cast<PointColumn>(section));
}
