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

    void setClasses(const LatencyClasses &classes);

protected:
    void changeEvent(QEvent *event) override;

private:
    void applyPalette();

    std::unique_ptr<QwtPlotHistogram> m_histogram;
};
