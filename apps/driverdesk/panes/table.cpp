#include "apps/driverdesk/panes/table.h"

#include "apps/driverdesk/models/copied_cells.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>

#include <algorithm>

Table::Table(QWidget *parent) : QTableView(parent)
{
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setWordWrap(false);
    setShowGrid(false);
    setAlternatingRowColors(true);
    setTabKeyNavigation(false);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + fontMetrics().height() / 3);
    horizontalHeader()->setHighlightSections(false);
    connect(this, &QAbstractItemView::doubleClicked, this, &Table::chosen);
}

void Table::fitColumn(int column, const QString &widestText)
{
    const QString title = model()->headerData(column, Qt::Horizontal).toString();
    const int space = 2 * fontMetrics().averageCharWidth();
    // The title has a mark beside it where it is sorted by.
    const int mark = isSortingEnabled() ? 2 * space : 0;
    const int width = std::max(fontMetrics().horizontalAdvance(widestText),
                               horizontalHeader()->fontMetrics().horizontalAdvance(title) + mark);
    setColumnWidth(column, width + space);
}

void Table::copySelection() const
{
    QModelIndexList cells;
    for (const QModelIndex &index : selectedIndexes()) {
        if (!isColumnHidden(index.column()))
            cells += index;
    }
    if (!cells.isEmpty())
        QApplication::clipboard()->setText(copiedText(cells));
}

QSize Table::sizeHint() const
{
    return {QTableView::sizeHint().width(), minimumSizeHint().height()};
}

void Table::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Copy))
        return copySelection();
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && currentIndex().isValid() && state() != QAbstractItemView::EditingState)
        emit chosen(currentIndex());
    else
        QTableView::keyPressEvent(event);
}
