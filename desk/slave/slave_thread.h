#pragma once

#include "desk/slave/slave_options.h"

#include <QThread>

#include <memory>

class EmbeddedSlave;

/// A slave in a thread of its own, for programs whose own thread blocks in a driver. All of it may be called
/// from any one thread.
class SlaveThread
{
public:
    explicit SlaveThread(const SlaveOptions &slaveOptions = SlaveOptions());
    ~SlaveThread();
    SlaveThread(const SlaveThread &) = delete;
    SlaveThread &operator=(const SlaveThread &) = delete;

    /// Listens, with the memory that the options say; on the same port again when it had been stopped.
    bool start();
    /// Closes all connections and the port.
    void stop();
    bool isRunning() const { return m_slave != nullptr; }

    quint16 port() const { return m_options.port; }
    /// Why start() failed.
    QString errorString() const { return m_error; }

    /// Memory of a station of a running slave, holes included.
    quint16 value(int station, Area area, quint16 offset);
    void setValue(int station, Area area, quint16 offset, quint16 value);
    /// Several at once, of stations that it has.
    void setValues(const QList<SlaveMemory::Value> &values);
    /// The same places with what they hold now.
    QList<SlaveMemory::Value> valuesAt(QList<SlaveMemory::Value> places);

    /// What goes wrong from now on, also after it was stopped and started again.
    void setFaults(const FaultPlan &plan);
    /// What goes wrong with the next replies.
    void inject(const Fault &fault, int replies = 1);
    SlaveCounts counts();

private:
    template <typename Function>
    void run(Function function);

    SlaveOptions m_options;
    QString m_error;
    QThread m_thread;
    /// Lives in the thread; what has to run there is sent to it.
    std::unique_ptr<QObject> m_mailbox;
    std::unique_ptr<EmbeddedSlave> m_slave;
};
