#include "apps/driverdesk/panes/traffic_pane.h"

#include "apps/driverdesk/panes/table.h"
#include "desk/wire/protocol.h"
#include "desk/written_file.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace
{

std::optional<int> chosenNumber(const QComboBox &box)
{
    const QVariant number = box.currentData();
    return number.isValid() ? std::optional<int>(number.toInt()) : std::nullopt;
}

} // namespace

TrafficPane::TrafficPane(TrafficModel &model, QWidget *parent)
    : QWidget(parent),
      m_model(model),
      m_filter(model),
      m_table(new Table(this)),
      m_station(new QComboBox(this)),
      m_function(new QComboBox(this)),
      m_failures(new QCheckBox(tr("F&ailures"), this)),
      m_pause(new QCheckBox(tr("Pa&use"), this)),
      m_missed(new QLabel(this)),
      m_whole(new QLabel(this))
{
    m_table->setModel(&m_filter);
    m_table->setAccessibleName(tr("Traffic"));
    m_table->fitColumn(static_cast<int>(TrafficColumn::Time), QStringLiteral("00:00:00.000"));
    m_table->fitColumn(static_cast<int>(TrafficColumn::Direction), QStringLiteral("< received"));
    m_table->fitColumn(static_cast<int>(TrafficColumn::Bytes), QStringLiteral("01 03 00 00 00 02 C4 0B  "));
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_station->addItem(tr("all stations"));
    m_function->addItem(tr("all functions"));
    for (const int function :
         {modbus::ReadCoils, modbus::ReadDiscreteInputs, modbus::ReadHoldingRegisters,
          modbus::ReadInputRegisters, modbus::WriteSingleCoil, modbus::WriteSingleRegister,
          modbus::Diagnostics, modbus::WriteMultipleCoils, modbus::WriteMultipleRegisters})
        m_function->addItem(tr("function %1").arg(function), int(function));
    layOut();
    connectAll();
}

TrafficPane::~TrafficPane()
{
    // The table may still scroll when its rows go, after this pane has.
    m_table->verticalScrollBar()->disconnect(this);
}

void TrafficPane::layOut()
{
    auto *copy = new QToolButton(this);
    copy->setText(tr("Copy"));
    copy->setToolTip(tr("Copies the selected lines as they stand in a trace"));
    connect(copy, &QToolButton::clicked, this, &TrafficPane::copyLines);
    auto *save = new QToolButton(this);
    save->setText(tr("Save…"));
    save->setToolTip(tr("Saves the lines that are shown as a trace"));
    connect(save, &QToolButton::clicked, this, &TrafficPane::askAndSave);
    auto *bar = new QHBoxLayout;
    for (QWidget *widget : std::initializer_list<QWidget *>{m_station, m_function, m_failures, m_pause})
        bar->addWidget(widget);
    bar->addWidget(m_missed, 1);
    bar->addWidget(copy);
    bar->addWidget(save);
    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addLayout(bar);
    whole->addWidget(m_table, 1);
    whole->addWidget(m_whole);
    m_whole->setWordWrap(true);
    m_whole->setTextFormat(Qt::PlainText);
    m_whole->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_whole->setText(tr("Select a line to see all of it."));
    setFocusProxy(m_table);
}

void TrafficPane::connectAll()
{
    connect(m_station, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [this] { m_filter.setStation(chosenNumber(*m_station)); });
    connect(m_function, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [this] { m_filter.setFunction(chosenNumber(*m_function)); });
    connect(m_failures, &QCheckBox::toggled, &m_filter, &TrafficFilter::setFailuresOnly);
    connect(m_pause, &QCheckBox::toggled, this, [this](bool isOn) {
        m_model.setPaused(isOn);
        showMissed();
    });
    connect(m_table->selectionModel(), &QItemSelectionModel::currentChanged, this, &TrafficPane::showWhole);
    const QScrollBar *bar = m_table->verticalScrollBar();
    connect(bar, &QScrollBar::valueChanged, this,
            [this, bar](int value) { m_isAtEnd = value == bar->maximum(); });
}

void TrafficPane::setStations(const std::vector<int> &stations)
{
    if (int(stations.size()) == m_station->count() - 1)
        return;
    const QVariant chosen = m_station->currentData();
    m_station->clear();
    m_station->addItem(tr("all stations"));
    for (const int station : stations)
        m_station->addItem(tr("station %1").arg(station), station);
    m_station->setCurrentIndex(std::max(0, m_station->findData(chosen)));
}

void TrafficPane::followEnd()
{
    if (m_isAtEnd && !m_model.isPaused()) {
        m_table->scrollToBottom();
        m_isAtEnd = true;
    }
    showMissed();
}

void TrafficPane::showMissed()
{
    m_missed->setText(m_model.missed() == 0 ? QString() : tr("%1 lines not kept").arg(m_model.missed()));
}

void TrafficPane::showWhole(const QModelIndex &index)
{
    if (index.isValid())
        m_whole->setText(m_model.entry(m_filter.mapToSource(index).row()).line);
}

QString TrafficPane::wholeLine() const
{
    return m_whole->text();
}

void TrafficPane::copyLines() const
{
    QModelIndexList rows = m_table->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    QStringList lines;
    for (const QModelIndex &index : rows)
        lines += m_model.entry(m_filter.mapToSource(index).row()).line;
    QApplication::clipboard()->setText((lines.isEmpty() ? m_filter.lines() : lines).join(QLatin1Char('\n')));
}

Result<> TrafficPane::save(const QString &path) const
{
    const QByteArray text = m_filter.lines().join(QLatin1Char('\n')).toUtf8() + '\n';
    QSaveFile file(path);
    if (saveWhole(file, text))
        return {};
    return Error{tr("%1 cannot be written: %2").arg(path, file.errorString())};
}

void TrafficPane::askAndSave()
{
    const QString path = QFileDialog::getSaveFileName(this, tr("Save the trace"), QStringLiteral("trace.txt"),
                                                      tr("Traces (*.txt)"));
    if (path.isEmpty())
        return;
    const Result<> saved = save(path);
    if (!saved)
        emit failed(saved.errorText());
}
