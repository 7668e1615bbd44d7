#pragma once

#include "apps/driverdesk/worker/feed.h"
#include "apps/driverdesk/worker/ground.h"

#include <QThread>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <set>

class LinkRun;

/// The thread that alone talks to the driver, which blocks. Orders come from any one thread and are carried
/// out one after the other, between two rounds; what came of them goes to the feed.
class LinkWorker : public QThread
{
    Q_OBJECT

public:
    /// The feed stays the caller's.
    explicit LinkWorker(Feed &feed) : m_feed(feed) {}
    /// Asks the thread to end, and waits for that.
    ~LinkWorker() override;

    /// Opens another ground in the place of the one before. Its number, which snapshots bear.
    int open(const Ground &ground);
    void closeLink();
    /// Asks again for what was refused before.
    void askAgain();
    void setInterval(int milliseconds);
    /// While it is paused nothing is read; writes are carried out.
    void setPaused(bool isPaused);
    /// Which rows are handed on value by value.
    void setTrended(const std::set<int> &rows);
    /// The number that the outcome bears.
    quint64 submit(WriteOrder order);

    /// Asks the thread to end, whatever it waits for.
    void stop();

private:
    using Order = std::function<void(LinkRun &)>;

    void run() override;
    void post(const Order &order, bool isUrgent);
    std::deque<Order> takeOrders();
    void waitUntil(qint64 time);
    void workOn(LinkRun &run);

    Feed &m_feed;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Order> m_orders;
    std::atomic<bool> m_isUrgent{false};
    std::atomic<bool> m_isStopped{false};
    std::atomic<bool> m_isPaused{false};
    int m_grounds = 0;
    quint64 m_writes = 0;
};
