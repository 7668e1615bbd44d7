#pragma once

#include "apps/driverdesk/slave/fault_switches.h"
#include "apps/driverdesk/slave/slave_values_model.h"
#include "desk/slave/slave_thread.h"

#include <QTimer>

/// The embedded slave, whose values are shown, edited and moved, and whose replies go wrong as is switched.
class MovingSlave : public QObject
{
    Q_OBJECT

public:
    explicit MovingSlave(QObject *parent = nullptr);

    /// Listens on the loopback address; port 0 is one that is free. The error says why it cannot.
    Result<> start(quint16 port, const QList<int> &stations);
    void stop();
    bool isRunning() const { return m_slave && m_slave->isRunning(); }
    quint16 port() const { return m_slave ? m_slave->port() : quint16(0); }
    const QList<int> &stations() const { return m_stations; }
    SlaveCounts counts();

    SlaveValuesModel &values() { return m_values; }
    FaultSwitches &faults() { return m_faults; }
    const SlaveValuesModel &values() const { return m_values; }
    const FaultSwitches &faults() const { return m_faults; }
    void setSeed(quint32 seed);

    /// Moves what moves to where it is at a time, and shows what the slave holds.
    void moveTo(qint64 milliseconds);

signals:
    void runningChanged(bool isRunning);

private:
    QList<SlaveMemory::Value> shownPlaces() const;
    void putNumber(int row);
    void putAll();

    std::unique_ptr<SlaveThread> m_slave;
    QList<int> m_stations{1};
    SlaveValuesModel m_values;
    FaultSwitches m_faults;
    quint32 m_seed = 1;
    QTimer m_timer;
};
