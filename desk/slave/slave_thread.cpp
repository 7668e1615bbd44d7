#include "desk/slave/slave_thread.h"

#include "desk/slave/embedded_slave.h"

SlaveThread::SlaveThread(const SlaveOptions &slaveOptions) : m_options(slaveOptions) {}

SlaveThread::~SlaveThread()
{
    stop();
}

template <typename Function>
void SlaveThread::run(Function function)
{
    QMetaObject::invokeMethod(m_mailbox.get(), function, Qt::BlockingQueuedConnection);
}

bool SlaveThread::start()
{
    if (isRunning())
        return true;
    m_mailbox = std::make_unique<QObject>();
    m_mailbox->moveToThread(&m_thread);
    m_thread.start();
    bool listening = false;
    run([&] {
        m_slave = std::make_unique<EmbeddedSlave>(m_options);
        listening = m_slave->listen();
        m_error = m_slave->errorString();
        if (listening)
            m_options.port = m_slave->port();
    });
    if (!listening)
        stop();
    return listening;
}

void SlaveThread::stop()
{
    if (!isRunning())
        return;
    run([&] { m_slave.reset(); });
    m_thread.quit();
    m_thread.wait();
    m_mailbox.reset();
}

quint16 SlaveThread::value(int station, Area area, quint16 offset)
{
    quint16 result = 0;
    run([&] { result = m_slave->value(station, area, offset); });
    return result;
}

void SlaveThread::setValue(int station, Area area, quint16 offset, quint16 value)
{
    run([&] { m_slave->setValue(station, area, offset, value); });
}

void SlaveThread::setValues(const QList<SlaveMemory::Value> &values)
{
    run([&] {
        for (const SlaveMemory::Value &value : values)
            m_slave->setValue(value.station, value.area, value.offset, value.value);
    });
}

QList<SlaveMemory::Value> SlaveThread::valuesAt(QList<SlaveMemory::Value> places)
{
    run([&] {
        for (SlaveMemory::Value &place : places)
            place.value = m_slave->value(place.station, place.area, place.offset);
    });
    return places;
}

void SlaveThread::setFaults(const FaultPlan &plan)
{
    m_options.faults = plan;
    if (isRunning())
        run([&] { m_slave->faults() = plan; });
}

void SlaveThread::inject(const Fault &fault, int replies)
{
    run([&] { m_slave->inject(fault, replies); });
}

SlaveCounts SlaveThread::counts()
{
    SlaveCounts result;
    run([&] { result = m_slave->counts(); });
    return result;
}
