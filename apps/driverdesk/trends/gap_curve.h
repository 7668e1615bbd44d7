#pragma once

#include <qwt_plot_curve.h>

/// A curve that ends at points that are not a number, and begins again after them.
class GapCurve : public QwtPlotCurve
{
public:
    using QwtPlotCurve::QwtPlotCurve;

    void drawSeries(QPainter *painter, const QwtScaleMap &xMap, const QwtScaleMap &yMap,
                    const QRectF &canvasRect, int from, int to) const override;
};
