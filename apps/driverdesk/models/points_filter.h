#pragma once

#include "apps/driverdesk/models/points_model.h"

#include <QSortFilterProxyModel>

#include <optional>

/// The rows that are wanted, in the order that is wanted. It does not look again by itself whenever a value
/// moves: with thousands of them that would be all that a thread does.
class PointsFilter : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit PointsFilter(PointsModel &model, QObject *parent = nullptr);

    /// Words that all have to occur in the name, the address, the unit or the comment.
    void setText(const QString &text);
    /// Only rows in this state; nothing: in any.
    void setState(std::optional<PointState> state);
    /// Looks again at what moves; called now and then.
    void followValues();

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override;
    bool lessThan(const QModelIndex &left, const QModelIndex &right) const override;

private:
    PointsModel &m_model;
    QStringList m_words;
    std::optional<PointState> m_state;
};
