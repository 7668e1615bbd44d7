#pragma once

#include "apps/driverdesk/models/traffic_model.h"

#include "desk/result.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QLabel;
class Table;

/// The frames that go over the line, and what they mean.
class TrafficPane : public QWidget
{
    Q_OBJECT

public:
    explicit TrafficPane(TrafficModel &model, QWidget *parent = nullptr);
    ~TrafficPane() override;

    Table *table() const { return m_table; }
    QComboBox *functionBox() const { return m_function; }
    QCheckBox *failuresBox() const { return m_failures; }
    QCheckBox *pauseBox() const { return m_pause; }
    /// The whole line that is selected.
    QString wholeLine() const;
    /// Stations that a person can choose from.
    void setStations(const std::vector<int> &stations);
    /// Lines have been added; the last one is shown while the last one was.
    void followEnd();
    /// Saves what is shown in the form of a trace.
    Result<> save(const QString &path) const;

signals:
    /// Something could not be done, for the reason in the text.
    void failed(const QString &text);

private:
    void layOut();
    void connectAll();
    void copyLines() const;
    void askAndSave();
    void showMissed();
    void showWhole(const QModelIndex &index);

    TrafficModel &m_model;
    TrafficFilter m_filter;
    Table *m_table;
    QComboBox *m_station;
    QComboBox *m_function;
    QCheckBox *m_failures;
    QCheckBox *m_pause;
    QLabel *m_missed;
    QLabel *m_whole;
    bool m_isAtEnd = true;
};
