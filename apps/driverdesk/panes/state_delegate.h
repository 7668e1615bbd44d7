#pragma once

#include <QStyledItemDelegate>

/// Draws rows that are not live in grey, and slanted.
class StateDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    /// \a stateRole: where the rows have their PointState.
    StateDelegate(int stateRole, QObject *parent) : QStyledItemDelegate(parent), m_stateRole(stateRole) {}

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;

private:
    int m_stateRole;
};
