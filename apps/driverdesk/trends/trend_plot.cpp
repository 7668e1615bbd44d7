#include "apps/driverdesk/trends/trend_plot.h"

#include "apps/driverdesk/trends/fitted_scale.h"
#include "apps/driverdesk/trends/gap_curve.h"
#include "apps/driverdesk/trends/thinned_points.h"

#include <QDateTime>
#include <QEvent>
#include <QKeyEvent>
#include <QWheelEvent>
#include <qwt_date_scale_draw.h>
#include <qwt_date_scale_engine.h>
#include <qwt_picker_machine.h>
#include <qwt_plot_canvas.h>
#include <qwt_plot_grid.h>
#include <qwt_plot_marker.h>
#include <qwt_plot_panner.h>
#include <qwt_plot_picker.h>
#include <qwt_scale_widget.h>

#include <algorithm>
#include <cmath>

namespace
{

const double ZoomStep = 0.8;
const double PanStep = 0.2;
const double Margin = 0.05; // above and below the values

// Beside its colour a curve has dashes of its own, so that it is told apart without colours. Where there is
// more than a point for each column of pixels dashes do not show, and would take most of the time.
QPen penOf(int number, bool isDense)
{
    const Qt::PenStyle styles[] = {Qt::SolidLine, Qt::DashLine, Qt::DotLine, Qt::DashDotLine};
    return isDense ? QPen(TrendBook::colorOf(number), 1)
                   : QPen(TrendBook::colorOf(number), 2, styles[number / 2 % 4]);
}

QwtDateScaleDraw *makeTimeScale()
{
    auto *scale = new QwtDateScaleDraw(Qt::LocalTime);
    for (const QwtDate::IntervalType type : {QwtDate::Millisecond, QwtDate::Second})
        scale->setDateFormat(type, QStringLiteral("HH:mm:ss"));
    scale->setDateFormat(QwtDate::Minute, QStringLiteral("HH:mm"));
    scale->setDateFormat(QwtDate::Hour, QStringLiteral("HH:mm"));
    return scale;
}

} // namespace

TrendPlot::TrendPlot(TrendBook &book, QWidget *parent)
    : QwtPlot(parent),
      m_book(book),
      m_grid(std::make_unique<QwtPlotGrid>()),
      m_cursor(std::make_unique<QwtPlotMarker>())
{
    setAutoDelete(false);
    setAxisScaleDraw(QwtPlot::xBottom, makeTimeScale());
    setAxisScaleEngine(QwtPlot::xBottom, new QwtDateScaleEngine(Qt::LocalTime));
    setAxisMaxMajor(QwtPlot::xBottom, 6);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Trends"));
    static_cast<QwtPlotCanvas *>(canvas())->setFrameStyle(QFrame::NoFrame);
    m_grid->attach(this);
    m_cursor->setLineStyle(QwtPlotMarker::VLine);
    m_cursor->attach(this);
    m_cursor->setVisible(false);
    addInteraction();
    applyPalette();
    connect(&m_book, &TrendBook::curvesChanged, this, &TrendPlot::makeCurves);
    makeCurves();
}

TrendPlot::~TrendPlot() = default;

void TrendPlot::addInteraction()
{
    auto *zoomer = new QwtPlotPicker(QwtPlot::xBottom, QwtPlot::yLeft, QwtPicker::RectRubberBand,
                                     QwtPicker::AlwaysOff, canvas());
    zoomer->setStateMachine(new QwtPickerDragRectMachine);
    connect(zoomer, QOverload<const QRectF &>::of(&QwtPlotPicker::selected), this, &TrendPlot::zoomTo);
    auto *follower = new QwtPlotPicker(QwtPlot::xBottom, QwtPlot::yLeft, QwtPicker::NoRubberBand,
                                       QwtPicker::AlwaysOff, canvas());
    follower->setStateMachine(new QwtPickerTrackerMachine);
    connect(follower, &QwtPlotPicker::moved, this,
            [this](const QPointF &position) { setCursor(position.x()); });
    auto *panner = new QwtPlotPanner(canvas());
    panner->setMouseButton(Qt::LeftButton, Qt::ShiftModifier);
    connect(panner, &QwtPanner::panned, this, &TrendPlot::takePanned);
    canvas()->installEventFilter(this);
}

void TrendPlot::makeCurves()
{
    m_curves.clear();
    for (const TrendCurve &shown : m_book.curves()) {
        auto curve = std::make_unique<GapCurve>(shown.label);
        curve->setPaintAttribute(QwtPlotCurve::ClipPolygons);
        curve->setYAxis(shown.isRight ? QwtPlot::yRight : QwtPlot::yLeft);
        curve->setVisible(shown.isShown);
        curve->attach(this);
        m_curves.push_back(std::move(curve));
    }
    redraw();
}

void TrendPlot::redraw()
{
    if (!m_isPaused)
        m_window.follow(static_cast<double>(QDateTime::currentMSecsSinceEpoch()));
    const int columns = std::max(1, canvas()->width());
    for (size_t i = 0; i < m_curves.size(); ++i) {
        const TrendCurve &shown = m_book.curves()[i];
        const QVector<QPointF> points = thinnedPoints(shown.ring, m_window.begin(), m_window.end(), columns);
        m_curves[i]->setPen(penOf(shown.number, points.size() > columns));
        m_curves[i]->setSamples(points);
    }
    setAxisScale(QwtPlot::xBottom, m_window.begin(), m_window.end());
    showValues(QwtPlot::yLeft);
    showValues(QwtPlot::yRight);
    replot();
}

// The values that there are, with some room, unless a person has chosen others.
void TrendPlot::showValues(int axis)
{
    double low = std::numeric_limits<double>::infinity();
    double high = -low;
    QStringList units;
    for (size_t i = 0; i < m_curves.size(); ++i) {
        if (m_curves[i]->yAxis() != axis || !m_curves[i]->isVisible())
            continue;
        const QString unit = m_book.curves()[i].unit;
        if (!unit.isEmpty() && !units.contains(unit))
            units += unit;
        for (size_t point = 0; point < m_curves[i]->dataSize(); ++point) {
            const double value = m_curves[i]->sample(int(point)).y();
            low = std::isnan(value) ? low : std::min(low, value);
            high = std::isnan(value) ? high : std::max(high, value);
        }
    }
    const bool isUsed = std::any_of(m_curves.begin(), m_curves.end(),
                                    [=](const auto &curve) { return curve->yAxis() == axis; });
    enableAxis(axis, isUsed || axis == QwtPlot::yLeft);
    QwtText title(units.join(QStringLiteral(", ")));
    title.setFont(font());
    setAxisTitle(axis, title);
    fitScale(*this, axis);
    const std::optional<TrendWindow::Range> &chosen = m_window.values(axis == QwtPlot::yRight ? 1 : 0);
    if (chosen)
        return setAxisScale(axis, chosen->low, chosen->high);
    if (low > high)
        return setAxisScale(axis, 0, 1);
    const double room = high > low ? (high - low) * Margin : std::max(1.0, std::abs(high)) * Margin;
    setAxisScale(axis, low - room, high + room);
}

void TrendPlot::setPaused(bool isPaused)
{
    m_isPaused = isPaused;
    if (!isPaused)
        m_window.setFollowing(true);
    redraw();
    emit windowChanged();
}

void TrendPlot::zoomTo(const QRectF &area)
{
    const QRectF wanted = area.normalized();
    // A click is no area.
    const double least = m_window.span() / 100;
    if (wanted.width() < least)
        return;
    const auto onRight = [this](double left) {
        return invTransform(QwtPlot::yRight, static_cast<int>(transform(QwtPlot::yLeft, left)));
    };
    const TrendWindow::Range right = {onRight(wanted.top()), onRight(wanted.bottom())};
    m_window.show(wanted.left(), wanted.right());
    m_window.showValues(0, {wanted.top(), wanted.bottom()});
    m_window.showValues(1, right);
    redraw();
    emit windowChanged();
}

void TrendPlot::takePanned()
{
    const QwtScaleDiv time = axisScaleDiv(QwtPlot::xBottom);
    const QwtScaleDiv left = axisScaleDiv(QwtPlot::yLeft);
    const QwtScaleDiv right = axisScaleDiv(QwtPlot::yRight);
    m_window.show(time.lowerBound(), time.upperBound());
    m_window.showValues(0, {left.lowerBound(), left.upperBound()});
    m_window.showValues(1, {right.lowerBound(), right.upperBound()});
    redraw();
    emit windowChanged();
}

void TrendPlot::setCursor(double time)
{
    m_cursor->setXValue(time);
    m_cursor->setVisible(true);
    m_book.setCursor(time);
    replot();
}

void TrendPlot::moveCursor(double part)
{
    const bool isInside =
        m_cursor->isVisible() && m_book.cursor() >= m_window.begin() && m_book.cursor() <= m_window.end();
    const double from = isInside ? m_book.cursor() : m_window.begin() + m_window.span() / 2;
    setCursor(std::clamp(from + part * m_window.span(), m_window.begin(), m_window.end()));
}

bool TrendPlot::eventFilter(QObject *object, QEvent *event)
{
    if (object != canvas() || event->type() != QEvent::Wheel)
        return QwtPlot::eventFilter(object, event);
    const auto *wheel = static_cast<QWheelEvent *>(event);
    const double about = invTransform(QwtPlot::xBottom, wheel->position().toPoint().x());
    m_window.zoom(wheel->angleDelta().y() > 0 ? ZoomStep : 1 / ZoomStep, about);
    redraw();
    emit windowChanged();
    return true;
}

void TrendPlot::keyPressEvent(QKeyEvent *event)
{
    const bool isShifted = (event->modifiers() & Qt::ShiftModifier) != 0;
    const double middle = m_window.begin() + m_window.span() / 2;
    switch (event->key()) {
    case Qt::Key_Plus: m_window.zoom(ZoomStep, middle); break;
    case Qt::Key_Minus: m_window.zoom(1 / ZoomStep, middle); break;
    case Qt::Key_Left:
    case Qt::Key_Right: {
        const double part = event->key() == Qt::Key_Left ? -PanStep : PanStep;
        if (isShifted)
            return moveCursor(part / 20);
        m_window.pan(part);
        break;
    }
    case Qt::Key_Home: m_window.reset(); break;
    case Qt::Key_Space: return setPaused(!m_isPaused);
    default: return QwtPlot::keyPressEvent(event);
    }
    redraw();
    emit windowChanged();
}

void TrendPlot::resizeEvent(QResizeEvent *event)
{
    QwtPlot::resizeEvent(event);
    redraw();
}

void TrendPlot::changeEvent(QEvent *event)
{
    QwtPlot::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        applyPalette();
}

void TrendPlot::applyPalette()
{
    setCanvasBackground(palette().brush(QPalette::Base));
    if (!m_grid)
        return;
    QColor lines = palette().color(QPalette::Text);
    lines.setAlpha(40);
    m_grid->setMajorPen(lines, 1, Qt::SolidLine);
    m_cursor->setLinePen(palette().color(QPalette::Text), 1, Qt::DashLine);
}
