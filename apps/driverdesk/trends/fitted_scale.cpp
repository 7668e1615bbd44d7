#include "apps/driverdesk/trends/fitted_scale.h"

#include <QFontMetrics>

#include <algorithm>

namespace
{

const int FewestSteps = 2;
const int MostSteps = 8;

} // namespace

void fitScale(QwtPlot &plot, int axis)
{
    const int height = QFontMetrics(plot.axisFont(axis)).height();
    plot.setAxisMaxMajor(axis, std::clamp(plot.canvas()->height() / height, FewestSteps, MostSteps));
}
