#pragma once

#include "apps/driverdesk/worker/line_report.h"

#include <qwt_plot.h>

#include <memory>

class QwtPlotHistogram;

/// How many replies took how long.
class LatencyPlot : public QwtPlot
{
    Q_OBJECT

public:
    explicit LatencyPlot(QWidget *parent = nullptr);
    ~LatencyPlot() override;

    /// As low as it can be, for it lies under a text that gets more lines where it is narrow.
    QSize sizeHint() const override { return minimumSizeHint(); }

    void setClasses(const LatencyClasses &classes);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void applyPalette();

    std::unique_ptr<QwtPlotHistogram> m_histogram;
};
