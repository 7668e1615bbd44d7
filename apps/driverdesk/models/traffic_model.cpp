#include "apps/driverdesk/models/traffic_model.h"

#include <algorithm>

namespace
{

QString directionText(QChar mark)
{
    if (mark == QLatin1Char('>'))
        return QStringLiteral("> sent");
    if (mark == QLatin1Char('<'))
        return QStringLiteral("< received");
    return mark == QLatin1Char('!') ? QStringLiteral("! dropped") : QStringLiteral("– event");
}

} // namespace

void TrafficModel::add(const QStringList &lines)
{
    if (m_isPaused) {
        m_missed += static_cast<quint64>(lines.size());
        return;
    }
    const QStringList kept = lines.mid(std::max(0, int(lines.size()) - MaxEntries));
    if (kept.isEmpty())
        return;
    removeFirst(rowCount() + int(kept.size()) - MaxEntries);
    beginInsertRows({}, rowCount(), rowCount() + int(kept.size()) - 1);
    for (const QString &line : kept)
        m_entries.push_back(parseTraceLine(line));
    endInsertRows();
}

void TrafficModel::removeFirst(int count)
{
    if (count <= 0)
        return;
    beginRemoveRows({}, 0, count - 1);
    m_entries.erase(m_entries.begin(), m_entries.begin() + count);
    endRemoveRows();
}

void TrafficModel::clear()
{
    beginResetModel();
    m_entries.clear();
    m_missed = 0;
    endResetModel();
}

int TrafficModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_entries.size());
}

int TrafficModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(TrafficColumn::Meaning) + 1;
}

QVariant TrafficModel::data(const QModelIndex &index, int role) const
{
    const TrafficEntry &shown = entry(index.row());
    if (role == Qt::ToolTipRole)
        return shown.line;
    if (role != Qt::DisplayRole)
        return {};
    switch (static_cast<TrafficColumn>(index.column())) {
    case TrafficColumn::Time: return shown.time;
    case TrafficColumn::Direction: return directionText(shown.mark);
    case TrafficColumn::Bytes: return QString::fromLatin1(shown.bytes.toHex(' ').toUpper());
    case TrafficColumn::Meaning: break;
    }
    return shown.isFailure ? QStringLiteral("⚠ ") + shown.meaning : shown.meaning;
}

QVariant TrafficModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (static_cast<TrafficColumn>(section)) {
    case TrafficColumn::Time: return tr("Time");
    case TrafficColumn::Direction: return tr("Direction");
    case TrafficColumn::Bytes: return tr("Bytes");
    case TrafficColumn::Meaning: break;
    }
    return tr("Meaning");
}

TrafficFilter::TrafficFilter(TrafficModel &model, QObject *parent)
    : QSortFilterProxyModel(parent), m_model(model)
{
    setSourceModel(&model);
}

void TrafficFilter::setStation(std::optional<int> station)
{
    m_station = station;
    invalidateFilter();
}

void TrafficFilter::setFunction(std::optional<int> function)
{
    m_function = function;
    invalidateFilter();
}

void TrafficFilter::setFailuresOnly(bool isOn)
{
    m_isFailuresOnly = isOn;
    invalidateFilter();
}

QStringList TrafficFilter::lines() const
{
    QStringList lines;
    for (int row = 0; row < rowCount(); ++row)
        lines += m_model.entry(mapToSource(index(row, 0)).row()).line;
    return lines;
}

bool TrafficFilter::filterAcceptsRow(int row, const QModelIndex & /*parent*/) const
{
    const TrafficEntry &entry = m_model.entry(row);
    if (m_isFailuresOnly && !entry.isFailure)
        return false;
    return (!m_station || entry.station() == *m_station) && (!m_function || entry.function() == *m_function);
}
