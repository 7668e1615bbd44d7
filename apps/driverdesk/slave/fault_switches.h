#pragma once

#include "desk/slave/fault_plan.h"

#include <QAbstractListModel>

#include <set>

/// The faults of a slave as switches: those that are on share the replies that go wrong.
class FaultSwitches : public QAbstractListModel
{
    Q_OBJECT

public:
    explicit FaultSwitches(QObject *parent = nullptr);

    /// One reply of so many goes wrong; 1: every one.
    void setOneOf(int replies);
    int oneOf() const { return m_oneOf; }
    void setSeed(quint32 seed) { m_seed = seed; }
    void setOn(const QString &name, bool isOn);
    QStringList namesOn() const;
    bool isAnyOn() const { return !m_on.empty(); }
    FaultPlan plan() const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

signals:
    void changed();

private:
    QStringList m_names;
    std::set<int> m_on;
    int m_oneOf = 1;
    quint32 m_seed = 1;
};
