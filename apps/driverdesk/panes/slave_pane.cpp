#include "apps/driverdesk/panes/slave_pane.h"

#include "apps/driverdesk/panes/choice_delegate.h"
#include "apps/driverdesk/panes/table.h"
#include "desk/items/number_text.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSpinBox>
#include <QSplitter>
#include <QVBoxLayout>

namespace
{

const int DefaultSlavePort = 1502;
const int MaxOneOf = 100000;

// "1,5,7" as numbers of stations.
Result<QList<int>> stationsOf(const QString &text)
{
    QList<int> stations;
    for (const QString &part : text.split(QLatin1Char(','))) {
        const Result<int> station =
            parseNumber(QStringLiteral("station"), part.trimmed(), 1, modbus::MaxStation);
        if (!station)
            return station.error();
        stations += *station;
    }
    return stations;
}

} // namespace

SlavePane::SlavePane(MovingSlave &slave, QWidget *parent)
    : QWidget(parent),
      m_slave(slave),
      m_values(new Table(this)),
      m_port(new QSpinBox(this)),
      m_stations(new QLineEdit(QStringLiteral("1"), this)),
      m_start(new QPushButton(this)),
      m_open(new QPushButton(tr("&Open its points"), this)),
      m_state(new QLabel(this)),
      m_range(new QLineEdit(this)),
      m_faults(new QListView(this)),
      m_oneOf(new QSpinBox(this))
{
    m_port->setRange(0, 65535);
    m_port->setValue(DefaultSlavePort);
    m_port->setSpecialValueText(tr("a free one"));
    m_stations->setToolTip(tr("Stations that answer, such as 1,5"));
    m_oneOf->setRange(1, MaxOneOf);
    m_state->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_range->setPlaceholderText(tr("Show more, such as HR1..10"));
    m_values->setModel(&m_slave.values());
    m_values->setAccessibleName(tr("Values of the slave"));
    m_values->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                              QAbstractItemView::AnyKeyPressed);
    m_values->setItemDelegateForColumn(static_cast<int>(SlaveColumn::Movement),
                                       new ChoiceDelegate(movementNames(), m_values));
    m_values->horizontalHeader()->setStretchLastSection(true);
    for (int column = 0; column < SlaveValuesModel::columns(); ++column)
        m_values->fitColumn(column, QStringLiteral("65535"));
    m_faults->setModel(&m_slave.faults());
    m_faults->setAccessibleName(tr("Faults"));
    layOut();
    connect(m_start, &QPushButton::clicked, this, &SlavePane::startOrStop);
    connect(m_open, &QPushButton::clicked, this, [this] { emit openWanted(m_slave.port()); });
    connect(m_range, &QLineEdit::returnPressed, this, &SlavePane::addRange);
    connect(m_oneOf, QOverload<int>::of(&QSpinBox::valueChanged), &m_slave.faults(),
            &FaultSwitches::setOneOf);
    connect(&m_slave, &MovingSlave::runningChanged, this, &SlavePane::refresh);
    refresh();
}

void SlavePane::layOut()
{
    auto *bar = new QHBoxLayout;
    auto *port = new QLabel(tr("&Port"), this);
    port->setBuddy(m_port);
    auto *stations = new QLabel(tr("S&tations"), this);
    stations->setBuddy(m_stations);
    m_stations->setMaximumWidth(8 * fontMetrics().averageCharWidth());
    for (QWidget *widget :
         std::initializer_list<QWidget *>{port, m_port, stations, m_stations, m_start, m_open, m_state})
        bar->addWidget(widget);
    bar->addStretch(1);
    auto *splitter = new QSplitter(Qt::Horizontal, this);
    splitter->addWidget(valuesSide());
    splitter->addWidget(faultsSide());
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 1);
    splitter->setChildrenCollapsible(false);
    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addLayout(bar);
    whole->addWidget(splitter, 1);
    setFocusProxy(m_values);
}

QWidget *SlavePane::valuesSide()
{
    auto *side = new QWidget(this);
    auto *add = new QPushButton(tr("&Add"), side);
    auto *remove = new QPushButton(tr("&Remove"), side);
    connect(add, &QPushButton::clicked, this, &SlavePane::addRange);
    connect(remove, &QPushButton::clicked, this, &SlavePane::removeSelected);
    auto *below = new QHBoxLayout;
    below->addWidget(m_range, 1);
    below->addWidget(add);
    below->addWidget(remove);
    auto *column = new QVBoxLayout(side);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_values, 1);
    column->addLayout(below);
    return side;
}

QWidget *SlavePane::faultsSide()
{
    auto *side = new QWidget(this);
    auto *one = new QLabel(tr("&Faults: one of"), side);
    one->setBuddy(m_oneOf);
    auto *row = new QHBoxLayout;
    row->addWidget(one);
    row->addWidget(m_oneOf);
    row->addWidget(new QLabel(tr("replies"), side), 1);
    auto *column = new QVBoxLayout(side);
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(row);
    column->addWidget(m_faults, 1);
    return side;
}

void SlavePane::startOrStop()
{
    if (m_slave.isRunning())
        return m_slave.stop();
    const Result<QList<int>> stations = stationsOf(m_stations->text());
    const Result<> started = stations ? m_slave.start(static_cast<quint16>(m_port->value()), *stations)
                                      : Result<>(stations.error());
    if (!started)
        emit failed(started.errorText());
}

void SlavePane::addRange()
{
    const Result<> added = m_slave.values().addRange(m_range->text(), m_slave.stations().first());
    if (added)
        m_range->clear();
    else
        emit failed(added.errorText());
}

void SlavePane::removeSelected()
{
    std::vector<int> rows;
    for (const QModelIndex &index : m_values->selectionModel()->selectedRows())
        rows.push_back(index.row());
    m_slave.values().remove(rows);
}

void SlavePane::refresh()
{
    const bool isRunning = m_slave.isRunning();
    m_start->setText(isRunning ? tr("&Stop") : tr("&Start"));
    m_open->setEnabled(isRunning);
    m_port->setEnabled(!isRunning);
    m_stations->setEnabled(!isRunning);
    if (isRunning)
        m_port->setValue(m_slave.port());
    if (m_oneOf->value() != m_slave.faults().oneOf())
        m_oneOf->setValue(m_slave.faults().oneOf());
    const SlaveCounts counts = m_slave.counts();
    m_state->setText(isRunning ? tr("%1 requests, %2 exceptions").arg(counts.requests).arg(counts.exceptions)
                               : tr("stopped"));
}
