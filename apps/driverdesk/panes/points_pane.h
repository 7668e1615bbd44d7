#pragma once

#include "apps/driverdesk/models/points_filter.h"

#include <QTimer>
#include <QWidget>

class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class Table;

/// The points with their values: filter, sorting, columns.
class PointsPane : public QWidget
{
    Q_OBJECT

public:
    explicit PointsPane(PointsModel &model, QWidget *parent = nullptr);

    /// Gives columns the widths that their texts need.
    void fitColumns();
    /// The rows that are selected, as the model numbers them.
    std::vector<int> selectedRows() const;
    /// Actions that show and hide columns.
    void addColumnActions(QMenu *menu);

    QByteArray saveColumns() const;
    void restoreColumns(const QByteArray &state);

    Table *table() const { return m_table; }
    QLineEdit *filterEdit() const { return m_text; }
    /// All of the state of the row that is current.
    QString wholeState() const;
    QComboBox *stateBox() const { return m_state; }

signals:
    void writeWanted(int row);
    void trendsWanted(const std::vector<int> &rows);

private:
    void layOut();
    void showCounts();
    void showWhole();
    void chooseState(int index);
    void showMenu(const QPoint &position);

    PointsModel &m_model;
    PointsFilter m_filter;
    Table *m_table;
    QLineEdit *m_text;
    QComboBox *m_state;
    QLabel *m_counts;
    QLabel *m_whole;
    QTimer m_slowly;
};
