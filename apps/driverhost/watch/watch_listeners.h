#pragma once

#include "desk/live/watch_loop.h"

/// Several listeners as one; the watch ends when one of them wants no more.
class WatchListeners : public WatchListener
{
public:
    /// \a listener is told of everything as long as it lives.
    void add(WatchListener *listener) { m_listeners.push_back(listener); }

    bool add(size_t reading, const std::vector<ValueRow> &rows) override
    {
        return all([&](WatchListener &listener) { return listener.add(reading, rows); });
    }
    bool addFailure(size_t reading, const std::vector<ValueRow> &rows, const QString &error) override
    {
        return all([&](WatchListener &listener) { return listener.addFailure(reading, rows, error); });
    }
    bool addNotAsked(size_t reading, const std::vector<ValueRow> &rows, const QString &error) override
    {
        return all([&](WatchListener &listener) { return listener.addNotAsked(reading, rows, error); });
    }
    bool endRound() override
    {
        return all([](WatchListener &listener) { return listener.endRound(); });
    }
    void tick() override
    {
        for (WatchListener *const listener : m_listeners)
            listener->tick();
    }

private:
    template <typename Tell>
    bool all(Tell tell)
    {
        bool isWanted = true;
        for (WatchListener *const listener : m_listeners)
            isWanted = tell(*listener) && isWanted;
        return isWanted;
    }

    std::vector<WatchListener *> m_listeners;
};
