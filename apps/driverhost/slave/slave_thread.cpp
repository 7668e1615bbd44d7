#include "slave/slave_thread.h"

#include "slave/embedded_slave.h"

SlaveThread::SlaveThread(const SlaveOptions &slaveOptions) : options(slaveOptions) {}

SlaveThread::~SlaveThread()
{
    stop();
}

template <typename Function>
void SlaveThread::run(Function function)
{
    QMetaObject::invokeMethod(mailbox.get(), function, Qt::BlockingQueuedConnection);
}

bool SlaveThread::start()
{
    if (isRunning())
        return true;
    mailbox = std::make_unique<QObject>();
    mailbox->moveToThread(&thread);
    thread.start();
    bool listening = false;
    run([&] {
        slave = std::make_unique<EmbeddedSlave>(options);
        listening = slave->listen();
        error = slave->errorString();
        if (listening)
            options.port = slave->port();
    });
    if (!listening)
        stop();
    return listening;
}

void SlaveThread::stop()
{
    if (!isRunning())
        return;
    run([&] { slave.reset(); });
    thread.quit();
    thread.wait();
    mailbox.reset();
}

quint16 SlaveThread::value(int station, SlaveArea area, quint16 offset)
{
    quint16 result = 0;
    run([&] { result = slave->value(station, area, offset); });
    return result;
}

void SlaveThread::setValue(int station, SlaveArea area, quint16 offset, quint16 value)
{
    run([&] { slave->setValue(station, area, offset, value); });
}

void SlaveThread::inject(const Fault &fault, int replies)
{
    run([&] { slave->inject(fault, replies); });
}

SlaveCounts SlaveThread::counts()
{
    SlaveCounts result;
    run([&] { result = slave->counts(); });
    return result;
}
