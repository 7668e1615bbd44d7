#include "apps/driverdesk/slave/fault_switches.h"

#include <algorithm>

FaultSwitches::FaultSwitches(QObject *parent) : QAbstractListModel(parent), m_names(allFaultNames()) {}

void FaultSwitches::setOneOf(int replies)
{
    m_oneOf = std::max(1, replies);
    emit changed();
}

void FaultSwitches::setOn(const QString &name, bool isOn)
{
    const int row = int(m_names.indexOf(name));
    if (row >= 0)
        setData(index(row), isOn ? Qt::Checked : Qt::Unchecked, Qt::CheckStateRole);
}

QStringList FaultSwitches::namesOn() const
{
    QStringList names;
    for (const int row : m_on)
        names += m_names.at(row);
    return names;
}

FaultPlan FaultSwitches::plan() const
{
    FaultPlan plan(m_seed);
    // Slightly less than their part, for the shares are added up in floating point.
    const double share = 99.9999 / m_oneOf / static_cast<double>(std::max<size_t>(1, m_on.size()));
    for (const int row : m_on) {
        const Result<> added = plan.add(QStringLiteral("%1=%2%").arg(m_names.at(row)).arg(share, 0, 'f', 6));
        Q_ASSERT(added.isGood());
    }
    return plan;
}

int FaultSwitches::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_names.size());
}

QVariant FaultSwitches::data(const QModelIndex &index, int role) const
{
    if (role == Qt::DisplayRole)
        return m_names.at(index.row());
    if (role == Qt::CheckStateRole)
        return m_on.count(index.row()) > 0 ? Qt::Checked : Qt::Unchecked;
    return {};
}

bool FaultSwitches::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::CheckStateRole || !index.isValid())
        return false;
    if (value.toInt() == Qt::Checked)
        m_on.insert(index.row());
    else
        m_on.erase(index.row());
    emit dataChanged(index, index, {Qt::CheckStateRole});
    emit changed();
    return true;
}

Qt::ItemFlags FaultSwitches::flags(const QModelIndex &index) const
{
    return QAbstractListModel::flags(index) | Qt::ItemIsUserCheckable;
}
