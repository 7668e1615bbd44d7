#include "apps/driverdesk/worker/link_worker.h"

#include "apps/driverdesk/worker/link_run.h"

namespace
{

// How long it sleeps at most, in milliseconds.
const qint64 LongestWait = 500;

} // namespace

LinkWorker::~LinkWorker()
{
    stop();
    wait();
}

int LinkWorker::open(const Ground &ground)
{
    const int number = ++m_grounds;
    post([=](LinkRun &run) { run.open(ground, number); }, true);
    return number;
}

void LinkWorker::closeLink()
{
    post([](LinkRun &run) { run.close(); }, true);
}

void LinkWorker::askAgain()
{
    post([](LinkRun &run) { run.forgetRefusals(); }, false);
}

void LinkWorker::setInterval(int milliseconds)
{
    post([=](LinkRun &run) { run.setInterval(milliseconds); }, false);
}

void LinkWorker::setPaused(bool isPaused)
{
    m_isPaused = isPaused;
    post([](LinkRun & /*run*/) {}, isPaused);
}

void LinkWorker::setTrended(const std::set<int> &rows)
{
    post([=](LinkRun &run) { run.setTrended(rows); }, false);
}

quint64 LinkWorker::submit(WriteOrder order)
{
    order.id = ++m_writes;
    post([=](LinkRun &run) { run.write(order); }, true);
    return order.id;
}

void LinkWorker::stop()
{
    m_isStopped = true;
    m_changed.notify_all();
}

void LinkWorker::post(const Order &order, bool isUrgent)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_orders.push_back(order);
    if (isUrgent)
        m_isUrgent = true;
    m_changed.notify_all();
}

std::deque<LinkWorker::Order> LinkWorker::takeOrders()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isUrgent = false;
    return std::exchange(m_orders, {});
}

void LinkWorker::waitUntil(qint64 time)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const qint64 left = std::min(time - steadyNow(), LongestWait);
    if (left > 0)
        m_changed.wait_for(lock, std::chrono::milliseconds(left),
                           [this] { return m_isStopped || !m_orders.empty(); });
}

void LinkWorker::run()
{
    LinkRun run(m_feed,
                {[this] { return m_isStopped.load(); }, [this] { return m_isStopped || m_isUrgent; }});
    while (!m_isStopped)
        workOn(run);
}

void LinkWorker::workOn(LinkRun &run)
{
    for (const Order &order : takeOrders())
        order(run);
    const bool isReading = run.isOpen() && !m_isPaused;
    if (isReading && steadyNow() >= run.nextRoundAt())
        return run.readRound();
    const qint64 publishAt = run.publish().value_or(steadyNow() + LongestWait);
    waitUntil(isReading ? std::min(publishAt, run.nextRoundAt()) : publishAt);
}
