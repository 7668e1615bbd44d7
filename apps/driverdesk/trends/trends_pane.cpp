#include "apps/driverdesk/trends/trends_pane.h"

#include "apps/driverdesk/panes/table.h"
#include "desk/written_file.h"

#include <QAction>
#include <QComboBox>
#include <QFileDialog>
#include <QHeaderView>
#include <QSplitter>
#include <QToolBar>
#include <QVBoxLayout>

namespace
{

const int RedrawInterval = 200; // milliseconds
const int Second = 1000;

std::vector<int> selectedCurves(const Table &list)
{
    std::vector<int> curves;
    for (const QModelIndex &index : list.selectionModel()->selectedRows())
        curves.push_back(index.row());
    return curves;
}

Result<> writeWhole(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (saveWhole(file, bytes))
        return {};
    return Error{QStringLiteral("%1 cannot be written: %2").arg(path, file.errorString())};
}

} // namespace

TrendsPane::TrendsPane(TrendBook &book, QWidget *parent)
    : QWidget(parent),
      m_book(book),
      m_plot(new TrendPlot(book, this)),
      m_list(new Table(this)),
      m_bar(new QToolBar(this)),
      m_span(new QComboBox(this)),
      m_pause(nullptr)
{
    m_list->setModel(&book);
    m_list->setAccessibleName(tr("Curves"));
    m_list->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    for (const auto &[seconds, text] : {std::pair<int, QString>{10, tr("10 s")},
                                        {60, tr("1 min")},
                                        {300, tr("5 min")},
                                        {900, tr("15 min")},
                                        {3600, tr("1 h")}})
        m_span->addItem(text, seconds * Second);
    m_span->setCurrentIndex(1);
    makeBar();
    layOut();
    connect(m_span, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this] {
        m_plot->window().setSpan(m_span->currentData().toInt());
        m_plot->redraw();
    });
    connect(m_plot, &TrendPlot::windowChanged, this, &TrendsPane::showWindow);
    connect(m_list, &Table::chosen, this, [this](const QModelIndex &index) {
        const QModelIndex axis = m_book.index(index.row(), static_cast<int>(TrendColumn::Axis));
        m_book.setData(axis,
                       axis.data().toString() == QStringLiteral("left") ? QStringLiteral("right")
                                                                        : QStringLiteral("left"),
                       Qt::EditRole);
    });
    connect(&m_redraw, &QTimer::timeout, m_plot, [this] {
        if (m_plot->isVisible() && !m_plot->isPaused() && m_plot->window().isFollowing())
            m_plot->redraw();
    });
    m_redraw.start(RedrawInterval);
}

void TrendsPane::makeBar()
{
    m_bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    m_bar->addWidget(m_span);
    m_pause = m_bar->addAction(tr("Pause"));
    m_pause->setCheckable(true);
    m_pause->setToolTip(tr("The picture stands still; the samples go on (Space)"));
    connect(m_pause, &QAction::toggled, m_plot, [this](bool isOn) {
        if (isOn != m_plot->isPaused())
            m_plot->setPaused(isOn);
    });
    const auto add = [this](const QString &text, const QString &tip, auto function) {
        m_bar->addAction(text, this, function)->setToolTip(tip);
    };
    add(tr("Reset"), tr("All values, up to now (Home)"), [this] {
        m_plot->window().reset();
        m_plot->setPaused(false);
    });
    add(tr("Remove"), tr("Takes the selected curves away"),
        [this] { m_book.remove(selectedCurves(*m_list)); });
    add(tr("PNG…"), tr("Saves the picture"), [this] { askAndSave(true); });
    add(tr("CSV…"), tr("Saves the values that are shown"), [this] { askAndSave(false); });
}

void TrendsPane::layOut()
{
    auto *splitter = new QSplitter(Qt::Vertical, this);
    splitter->addWidget(m_plot);
    splitter->addWidget(m_list);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 1);
    splitter->setChildrenCollapsible(false);
    splitter->setSizes({18 * fontMetrics().height(), 6 * fontMetrics().height()});
    m_list->setMinimumHeight(2 * m_list->verticalHeader()->defaultSectionSize());
    m_plot->setMinimumHeight(6 * fontMetrics().height());
    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->setSpacing(0);
    whole->addWidget(m_bar);
    whole->addWidget(splitter, 1);
    setFocusProxy(m_plot);
}

void TrendsPane::showWindow()
{
    m_pause->setChecked(m_plot->isPaused());
}

int TrendsPane::span() const
{
    return m_span->currentData().toInt();
}

void TrendsPane::setSpan(int milliseconds)
{
    const int index = m_span->findData(milliseconds);
    if (index >= 0)
        m_span->setCurrentIndex(index);
}

void TrendsPane::askAndSave(bool isPicture)
{
    const QString path =
        isPicture ? QFileDialog::getSaveFileName(this, tr("Save the picture"), QStringLiteral("trends.png"),
                                                 tr("Pictures (*.png)"))
                  : QFileDialog::getSaveFileName(this, tr("Save the values"), QStringLiteral("trends.csv"),
                                                 tr("Comma separated values (*.csv)"));
    if (path.isEmpty())
        return;
    const Result<> saved = isPicture ? savePicture(path) : saveValues(path);
    if (!saved)
        emit failed(saved.errorText());
}

Result<> TrendsPane::savePicture(const QString &path)
{
    const QPixmap picture = m_plot->parentWidget()->grab();
    if (picture.save(path, "PNG"))
        return {};
    return Error{QStringLiteral("%1 cannot be written").arg(path)};
}

Result<> TrendsPane::saveValues(const QString &path) const
{
    const QStringList lines = m_book.csvLines(m_plot->window().begin(), m_plot->window().end());
    return writeWhole(path, lines.join(QLatin1Char('\n')).toUtf8() + '\n');
}
