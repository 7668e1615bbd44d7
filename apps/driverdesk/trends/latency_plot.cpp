#include "apps/driverdesk/trends/latency_plot.h"

#include "apps/driverdesk/trends/fitted_scale.h"

#include <QEvent>
#include <qwt_column_symbol.h>
#include <qwt_plot_canvas.h>
#include <qwt_plot_histogram.h>
#include <qwt_scale_draw.h>

namespace
{

// The classes grow, so each has the same width and is named by its end.
class ClassScale : public QwtScaleDraw
{
public:
    QwtText label(double value) const override
    {
        return LatencyClasses::nameOf(static_cast<size_t>(value < 0 ? 0 : value));
    }
};

} // namespace

LatencyPlot::LatencyPlot(QWidget *parent) : QwtPlot(parent), m_histogram(std::make_unique<QwtPlotHistogram>())
{
    setAutoDelete(false);
    setAccessibleName(tr("Latency"));
    static_cast<QwtPlotCanvas *>(canvas())->setFrameStyle(QFrame::NoFrame);
    setAxisScaleDraw(QwtPlot::xBottom, new ClassScale);
    const auto classes = static_cast<double>(LatencyClasses::size());
    QList<double> ticks;
    for (size_t i = 0; i < LatencyClasses::size(); ++i)
        ticks += static_cast<double>(i);
    setAxisScaleDiv(QwtPlot::xBottom, QwtScaleDiv(-0.5, classes - 0.5, {}, {}, ticks));
    for (const auto &[axis, text] : {std::pair<int, QString>{QwtPlot::xBottom, tr("latency, up to … ms")},
                                     {QwtPlot::yLeft, tr("replies")}}) {
        QwtText title(text);
        title.setFont(font());
        setAxisTitle(axis, title);
    }
    // So that the names of twelve classes fit beside each other.
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.8);
    setAxisFont(QwtPlot::xBottom, small);
    m_histogram->setStyle(QwtPlotHistogram::Columns);
    m_histogram->attach(this);
    applyPalette();
}

LatencyPlot::~LatencyPlot() = default;

void LatencyPlot::setClasses(const LatencyClasses &classes)
{
    QVector<QwtIntervalSample> columns;
    for (size_t i = 0; i < LatencyClasses::size(); ++i) {
        const auto middle = static_cast<double>(i);
        columns.append({static_cast<double>(classes.count(i)), middle - 0.4, middle + 0.4});
    }
    m_histogram->setSamples(columns);
    replot();
}

void LatencyPlot::resizeEvent(QResizeEvent *event)
{
    QwtPlot::resizeEvent(event);
    fitScale(*this, QwtPlot::yLeft);
    replot();
}

void LatencyPlot::changeEvent(QEvent *event)
{
    QwtPlot::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_histogram)
        applyPalette();
}

void LatencyPlot::applyPalette()
{
    setCanvasBackground(palette().brush(QPalette::Base));
    m_histogram->setBrush(palette().brush(QPalette::Highlight));
    m_histogram->setPen(palette().color(QPalette::Text));
}
