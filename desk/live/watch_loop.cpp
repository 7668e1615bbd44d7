#include "desk/live/watch_loop.h"

#include "desk/time_text.h"

#include <algorithm>

WatchLoop::WatchLoop(Session &session, const std::vector<Reading> &readings, const WatchSettings &settings,
                     const WatchPauses &pauses)
    : m_session(session), m_readings(readings), m_settings(settings), m_pauses(pauses)
{
}

bool WatchLoop::run(WatchListener &listener)
{
    m_clock.start();
    m_session.channel().setCancelled([&] {
        listener.tick();
        return isStopped();
    });
    const bool isWanted = readRounds(listener);
    m_session.channel().setCancelled(m_pauses.isStopped);
    return isWanted;
}

bool WatchLoop::readRounds(WatchListener &listener)
{
    for (int rounds = 1;; ++rounds) {
        if (!readRound(listener) || !listener.endRound())
            return false;
        if (isOver(rounds))
            return true;
        m_pauses.wait(timeToNextRound());
        if (isOver(rounds))
            return true;
    }
}

bool WatchLoop::readRound(WatchListener &listener)
{
    for (size_t i = 0; i < m_readings.size(); ++i) {
        if (!readOne(listener, i))
            return false;
        // Without a connection the others would wait for one each, and in vain.
        if (m_isUnconnected && !failOthers(listener, i + 1))
            return false;
        if (m_isUnconnected)
            break;
    }
    return true;
}

bool WatchLoop::readOne(WatchListener &listener, size_t index)
{
    const Reading &reading = m_readings[index];
    const std::optional<QByteArray> data = m_session.read(reading.items);
    m_isUnconnected = !data && m_session.failure().kind == FailureKind::CannotConnect;
    if (data) {
        m_statistics.addSuccess(m_session.lastCommand().latency());
        return listener.add(index, timedRows(reading, *data));
    }
    // What was given up because the run is over is no failure of the slave.
    if (isStopped())
        return true;
    m_failure = m_session.failure();
    m_statistics.addFailure(m_failure->text);
    return listener.addFailure(index, failureText(reading));
}

bool WatchLoop::failOthers(WatchListener &listener, size_t first)
{
    for (size_t i = first; i < m_readings.size(); ++i) {
        if (!listener.addFailure(i, failureText(m_readings[i])))
            return false;
    }
    return true;
}

std::vector<ValueRow> WatchLoop::timedRows(const Reading &reading, const QByteArray &data) const
{
    std::vector<ValueRow> rows = rowsOf(reading, data, m_session.stationFor(reading.items));
    const QString time = dateAndTimeText(QDateTime::currentDateTime());
    for (ValueRow &row : rows) {
        row.time = time;
        row.latency = m_session.lastCommand().latency();
    }
    return rows;
}

QString WatchLoop::failureText(const Reading &reading)
{
    return labelOf(reading) + QStringLiteral(": ") + m_session.failure().text;
}

bool WatchLoop::isStopped() const
{
    return m_pauses.isStopped() || (m_settings.duration > 0 && m_clock.elapsed() >= m_settings.duration);
}

bool WatchLoop::isOver(int rounds) const
{
    return isStopped() || (m_settings.rounds > 0 && rounds >= m_settings.rounds);
}

// Rounds keep to their times; those that a long round has missed are left out.
qint64 WatchLoop::timeToNextRound() const
{
    const qint64 now = m_clock.elapsed();
    const qint64 interval = m_settings.interval;
    const qint64 next = interval == 0 ? now : (now / interval + 1) * interval;
    return m_settings.duration > 0 ? std::min(next, m_settings.duration) - now : next - now;
}
