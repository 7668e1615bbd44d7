#pragma once

#include <qwt_plot.h>

/// Gives an upright axis as many numbers as fit over each other; it shows from the next replot() on.
void fitScale(QwtPlot &plot, int axis);
