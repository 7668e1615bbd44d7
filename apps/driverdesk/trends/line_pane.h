#pragma once

#include "apps/driverdesk/models/line_model.h"

#include <QWidget>

class LatencyPlot;
class QLabel;
class Table;

/// What has happened on the line, how long replies took, and how busy it is.
class LinePane : public QWidget
{
    Q_OBJECT

public:
    explicit LinePane(LineModel &model, QWidget *parent = nullptr);

    void showReport(const LineReport &report);
    Table *table() const { return m_table; }
    QString summary() const;

private:
    LineModel &m_model;
    Table *m_table;
    LatencyPlot *m_plot;
    QLabel *m_summary;
};
