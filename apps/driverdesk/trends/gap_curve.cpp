#include "apps/driverdesk/trends/gap_curve.h"

#include <cmath>

void GapCurve::drawSeries(QPainter *painter, const QwtScaleMap &xMap, const QwtScaleMap &yMap,
                          const QRectF &canvasRect, int from, int to) const
{
    const int count = static_cast<int>(dataSize());
    const int end = to < 0 ? count : std::min(to + 1, count);
    for (int begin = from; begin < end; ++begin) {
        int last = begin;
        while (last < end && !std::isnan(sample(last).y()))
            ++last;
        if (last > begin)
            QwtPlotCurve::drawSeries(painter, xMap, yMap, canvasRect, begin, last - 1);
        begin = last;
    }
}
