#include "apps/driverdesk/trends/line_pane.h"

#include "apps/driverdesk/models/point_view.h"
#include "apps/driverdesk/panes/table.h"
#include "apps/driverdesk/trends/latency_plot.h"

#include <QHeaderView>
#include <QLabel>
#include <QSplitter>
#include <QVBoxLayout>

namespace
{

QString percentText(double share)
{
    return QStringLiteral("%1 %").arg(share * 100, 0, 'f', 1);
}

QString summaryOf(const LineReport &report)
{
    QString text = LinePane::tr("Busy %1 of the time, %2 of the last 10 s.")
                       .arg(percentText(report.busyShare), percentText(report.recentBusyShare));
    if (report.median >= 0)
        text += LinePane::tr(" Latency: median %1, 95 % below %2, 99 % below %3.")
                    .arg(latencyText(report.median), latencyText(report.ninetyFifth),
                         latencyText(report.ninetyNinth));
    return text;
}

} // namespace

LinePane::LinePane(LineModel &model, QWidget *parent)
    : QWidget(parent),
      m_model(model),
      m_table(new Table(this)),
      m_plot(new LatencyPlot(this)),
      m_summary(new QLabel(summaryOf({}), this))
{
    m_table->setModel(&m_model);
    m_table->setAccessibleName(tr("Counts of the line"));
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_summary->setWordWrap(true);
    m_summary->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto *splitter = new QSplitter(Qt::Horizontal, this);
    splitter->addWidget(m_table);
    splitter->addWidget(m_plot);
    splitter->setChildrenCollapsible(false);
    splitter->setStretchFactor(0, 1);
    splitter->setStretchFactor(1, 1);
    m_plot->setMinimumSize(fontMetrics().averageCharWidth() * 52, fontMetrics().height() * 8);
    // Room for the titles and the counts of a station or two.
    splitter->setSizes({fontMetrics().averageCharWidth() * 48, fontMetrics().averageCharWidth() * 54});
    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(m_summary);
    whole->addWidget(splitter, 1);
    setFocusProxy(m_table);
}

void LinePane::showReport(const LineReport &report)
{
    m_model.setReport(report);
    m_summary->setText(summaryOf(report));
    if (m_plot->isVisible())
        m_plot->setClasses(report.latencies);
}

QString LinePane::summary() const
{
    return m_summary->text();
}
