#include "apps/driverdesk/panes/points_pane.h"

#include "apps/driverdesk/panes/state_delegate.h"
#include "apps/driverdesk/panes/table.h"
#include "desk/items/number_text.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QVBoxLayout>

#include <algorithm>

namespace
{

// Sorting by what moves, filtering by it, and counting.
const int SlowInterval = 1000; // milliseconds
const int WidestRows = 2000;   // that are looked at for the width of a column

QString widestOf(const PointsModel &model, PointColumn column)
{
    QString widest;
    for (int row = 0; row < std::min(model.rowCount(), WidestRows); ++row) {
        const QString text = model.index(row, static_cast<int>(column)).data().toString();
        if (text.size() > widest.size())
            widest = text;
    }
    return widest;
}

} // namespace

PointsPane::PointsPane(PointsModel &model, QWidget *parent)
    : QWidget(parent),
      m_model(model),
      m_filter(model),
      m_table(new Table(this)),
      m_text(new QLineEdit(this)),
      m_state(new QComboBox(this)),
      m_counts(new QLabel(this)),
      m_whole(new QLabel(this))
{
    m_table->setModel(&m_filter);
    m_table->setItemDelegate(new StateDelegate(PointsModel::StateRole, m_table));
    m_table->setSortingEnabled(true);
    m_table->sortByColumn(-1, Qt::AscendingOrder);
    m_table->setContextMenuPolicy(Qt::CustomContextMenu);
    m_table->setAccessibleName(tr("Points"));
    m_table->horizontalHeader()->setSectionsMovable(true);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_text->setPlaceholderText(tr("Filter by name, address, unit, comment (Ctrl+F)"));
    m_text->setClearButtonEnabled(true);
    m_state->addItems({tr("all states"), tr("waiting"), tr("live"), tr("late"), tr("failed")});
    m_counts->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layOut();

    connect(m_text, &QLineEdit::textChanged, &m_filter, &PointsFilter::setText);
    connect(m_state, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &PointsPane::chooseState);
    connect(m_table, &Table::chosen, this,
            [this](const QModelIndex &index) { emit writeWanted(m_filter.mapToSource(index).row()); });
    connect(m_table->selectionModel(), &QItemSelectionModel::currentChanged, this, &PointsPane::showWhole);
    connect(m_table, &QWidget::customContextMenuRequested, this, &PointsPane::showMenu);
    connect(&m_slowly, &QTimer::timeout, this, [this] {
        m_filter.followValues();
        showCounts();
        showWhole();
    });
    m_slowly.start(SlowInterval);
}

void PointsPane::layOut()
{
    auto *bar = new QHBoxLayout;
    bar->addWidget(m_text, 1);
    bar->addWidget(m_state);
    bar->addWidget(m_counts);
    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addLayout(bar);
    whole->addWidget(m_table, 1);
    whole->addWidget(m_whole);
    m_whole->setTextFormat(Qt::PlainText);
    m_whole->setWordWrap(true);
    m_whole->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_whole->hide();
    setFocusProxy(m_table);
}

void PointsPane::fitColumns()
{
    const auto fit = [this](PointColumn column, const QString &least) {
        const QString widest = widestOf(m_model, column);
        m_table->fitColumn(static_cast<int>(column), widest.size() > least.size() ? widest : least);
    };
    fit(PointColumn::Name, QStringLiteral("temperature"));
    fit(PointColumn::Address, QStringLiteral("HR10000"));
    fit(PointColumn::Offset, QStringLiteral("65535"));
    fit(PointColumn::Station, QStringLiteral("247"));
    fit(PointColumn::Value, QStringLiteral("was 1000.00 mbar"));
    fit(PointColumn::Type, QStringLiteral("dword"));
    fit(PointColumn::Age, QStringLiteral("59 min 59 s"));
    fit(PointColumn::Latency, QStringLiteral("0000 ms"));
    fit(PointColumn::Attempts, QStringLiteral("4"));
    fit(PointColumn::Errors, QStringLiteral("1000"));
    showCounts();
}

void PointsPane::showCounts()
{
    const int shown = m_filter.rowCount();
    QString text = shown == m_model.rowCount() ? counted(shown, "point")
                                               : tr("%1 of %2 points").arg(shown).arg(m_model.rowCount());
    const int failed = m_model.count(PointState::Failed);
    const int late = m_model.count(PointState::Late);
    if (failed > 0)
        text += tr(", %1 failed").arg(failed);
    if (late > 0)
        text += tr(", %1 late").arg(late);
    m_counts->setText(text);
}

// What is not live has reasons that are longer than a column.
void PointsPane::showWhole()
{
    const QModelIndex current = m_filter.mapToSource(m_table->currentIndex());
    const bool isShown = current.isValid() && m_model.viewOf(current.row()).state() == PointState::Failed;
    m_whole->setVisible(isShown);
    if (isShown)
        m_whole->setText(tr("%1: %2").arg(labelOf(m_model.rows()[static_cast<size_t>(current.row())]),
                                          m_model.viewOf(current.row()).stateText()));
}

QString PointsPane::wholeState() const
{
    return m_whole->text();
}

void PointsPane::chooseState(int index)
{
    m_filter.setState(index <= 0 ? std::nullopt
                                 : std::optional<PointState>(static_cast<PointState>(index - 1)));
}

std::vector<int> PointsPane::selectedRows() const
{
    std::vector<int> rows;
    for (const QModelIndex &index : m_table->selectionModel()->selectedRows())
        rows.push_back(m_filter.mapToSource(index).row());
    std::sort(rows.begin(), rows.end());
    return rows;
}

void PointsPane::showMenu(const QPoint &position)
{
    QMenu menu(this);
    const QModelIndex index = m_table->indexAt(position);
    QAction *write = menu.addAction(tr("&Write…"));
    QAction *trend = menu.addAction(tr("Show in &trends"));
    QAction *copy = menu.addAction(tr("&Copy"));
    write->setEnabled(index.isValid());
    trend->setEnabled(index.isValid());
    menu.addSeparator();
    addColumnActions(menu.addMenu(tr("C&olumns")));
    const QAction *chosen = menu.exec(m_table->viewport()->mapToGlobal(position));
    if (chosen == write && chosen != nullptr)
        emit writeWanted(m_filter.mapToSource(index).row());
    else if (chosen == trend && chosen != nullptr)
        emit trendsWanted(selectedRows());
    else if (chosen == copy && chosen != nullptr)
        m_table->copySelection();
}

void PointsPane::addColumnActions(QMenu *menu)
{
    for (int column = 0; column < PointsModel::columns(); ++column) {
        QAction *action = menu->addAction(PointsModel::titleOf(static_cast<PointColumn>(column)));
        action->setCheckable(true);
        action->setChecked(!m_table->isColumnHidden(column));
        connect(action, &QAction::toggled, m_table,
                [this, column](bool isShown) { m_table->setColumnHidden(column, !isShown); });
    }
}

QByteArray PointsPane::saveColumns() const
{
    return m_table->horizontalHeader()->saveState();
}

void PointsPane::restoreColumns(const QByteArray &state)
{
    m_table->horizontalHeader()->restoreState(state);
}
