#pragma once

#include "apps/driverdesk/models/point_view.h"
#include "apps/driverdesk/worker/ground.h"

#include <QAbstractTableModel>

/// The columns of the table of points.
enum class PointColumn { Name, Address, Offset, Station, Value, Type, Age, Latency, Attempts, Errors, State };

/// The rows of a ground with what the newest snapshot says of them.
class PointsModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Role {
        StateRole = Qt::UserRole, ///< PointState
        SortRole,                 ///< numbers as numbers
        SearchRole                ///< what a filter looks at
    };

    explicit PointsModel(QObject *parent = nullptr) : QAbstractTableModel(parent) {}

    void setRows(std::vector<PointRow> rows);
    void setSnapshot(const SnapshotPointer &snapshot, qint64 now);
    /// Time has passed without anything new.
    void setNow(qint64 now);

    const std::vector<PointRow> &rows() const { return m_rows; }
    PointView viewOf(int row) const;
    const PointSample &sampleOf(int row) const;
    /// How many rows are in a state.
    int count(PointState state) const;

    static QString titleOf(PointColumn column);
    static int columns() { return static_cast<int>(PointColumn::State) + 1; }
    /// Whether a column's texts change while the ground stays.
    static bool isMoving(PointColumn column);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QString textOf(int row, PointColumn column) const;
    QVariant sortKeyOf(int row, PointColumn column) const;
    QVariant toolTipOf(int row, PointColumn column) const;
    void tellMoved();

    std::vector<PointRow> m_rows;
    SnapshotPointer m_snapshot = std::make_shared<const Snapshot>();
    qint64 m_now = 0;
};
