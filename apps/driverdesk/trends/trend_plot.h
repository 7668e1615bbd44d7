#pragma once

#include "apps/driverdesk/trends/trend_book.h"
#include "apps/driverdesk/trends/trend_window.h"

#include <qwt_plot.h>

#include <memory>

class GapCurve;
class QwtPlotGrid;
class QwtPlotMarker;

/// Draws the curves of a book, and lets a person move in time.
class TrendPlot : public QwtPlot
{
    Q_OBJECT

public:
    explicit TrendPlot(TrendBook &book, QWidget *parent = nullptr);
    ~TrendPlot() override;

    TrendWindow &window() { return m_window; }
    /// Draws what the book holds and the window shows.
    void redraw();
    /// While it is paused the picture stands still; the samples go on.
    void setPaused(bool isPaused);
    bool isPaused() const { return m_isPaused; }
    void moveCursor(double part);

signals:
    /// A person has zoomed, panned, or paused.
    void windowChanged();

protected:
    bool eventFilter(QObject *object, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void addInteraction();
    void makeCurves();
    void applyPalette();
    void showValues(int axis);
    void zoomTo(const QRectF &area);
    void takePanned();
    void setCursor(double time);

    TrendBook &m_book;
    TrendWindow m_window;
    std::unique_ptr<QwtPlotGrid> m_grid;
    std::unique_ptr<QwtPlotMarker> m_cursor;
    std::vector<std::unique_ptr<GapCurve>> m_curves;
    bool m_isPaused = false;
};
