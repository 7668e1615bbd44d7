#pragma once

#include "apps/driverdesk/trends/trend_plot.h"

#include <QTimer>
#include <QWidget>

class QAction;
class QComboBox;
class QToolBar;
class Table;

/// The curves over time, with the list of what they are.
class TrendsPane : public QWidget
{
    Q_OBJECT

public:
    explicit TrendsPane(TrendBook &book, QWidget *parent = nullptr);

    TrendPlot *plot() const { return m_plot; }
    Table *list() const { return m_list; }
    QComboBox *spanBox() const { return m_span; }
    Result<> savePicture(const QString &path);
    Result<> saveValues(const QString &path) const;
    /// Milliseconds that are shown; and another one.
    int span() const;
    void setSpan(int milliseconds);

signals:
    /// Something could not be done, for the reason in the text.
    void failed(const QString &text);

private:
    void makeBar();
    void layOut();
    void showWindow();
    void askAndSave(bool isPicture);

    TrendBook &m_book;
    TrendPlot *m_plot;
    Table *m_list;
    QToolBar *m_bar;
    QComboBox *m_span;
    QAction *m_pause;
    QTimer m_redraw;
};
