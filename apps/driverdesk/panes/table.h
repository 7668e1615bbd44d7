#pragma once

#include <QTableView>

/// A table whose cells can be selected with the keyboard and copied as a table to be pasted.
class Table : public QTableView
{
    Q_OBJECT

public:
    explicit Table(QWidget *parent = nullptr);

    /// Gives a column the width of a text, and of its title.
    void fitColumn(int column, const QString &widestText);

    void copySelection() const;

    /// As low as it can be: what it does not show it scrolls.
    QSize sizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent *event) override;

signals:
    /// Enter was pressed, or the cell was double-clicked.
    void chosen(const QModelIndex &index);
};
