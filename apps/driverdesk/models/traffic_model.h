#pragma once

#include "apps/driverdesk/models/traffic_entry.h"

#include <QAbstractTableModel>
#include <QSortFilterProxyModel>

#include <deque>
#include <optional>

enum class TrafficColumn { Time, Direction, Bytes, Meaning };

/// The last lines of a trace.
class TrafficModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit TrafficModel(QObject *parent = nullptr) : QAbstractTableModel(parent) {}

    void add(const QStringList &lines);
    void clear();
    /// While it is paused, lines are counted and not kept.
    void setPaused(bool isPaused) { m_isPaused = isPaused; }
    bool isPaused() const { return m_isPaused; }
    quint64 missed() const { return m_missed; }
    void addMissed(quint64 lines) { m_missed += lines; }

    const TrafficEntry &entry(int row) const { return m_entries[static_cast<size_t>(row)]; }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// How many lines are kept.
    static constexpr int MaxEntries = 20000;

private:
    void removeFirst(int count);

    std::deque<TrafficEntry> m_entries;
    bool m_isPaused = false;
    quint64 m_missed = 0;
};

/// The lines of some station, some function, or of failures alone.
class TrafficFilter : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit TrafficFilter(TrafficModel &model, QObject *parent = nullptr);

    /// Nothing: all, and events too.
    void setStation(std::optional<int> station);
    void setFunction(std::optional<int> function);
    void setFailuresOnly(bool isOn);

    /// The lines that are shown, as they stand in a trace.
    QStringList lines() const;

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override;

private:
    TrafficModel &m_model;
    std::optional<int> m_station;
    std::optional<int> m_function;
    bool m_isFailuresOnly = false;
};
