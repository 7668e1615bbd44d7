#include "desk/live/watch_loop.h"

#include "desk/time_text.h"

#include <algorithm>

WatchLoop::WatchLoop(Session &session, const std::vector<Reading> &readings, const WatchSettings &settings,
                     const WatchPauses &pauses)
    : m_session(session),
      m_readings(readings),
      m_settings(settings),
      m_pauses(pauses),
      m_lastRows(readings.size())
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
    while (true) {
        if (!readRound(listener))
            return false;
        ++m_rounds;
        if (!listener.endRound())
            return false;
        if (isOver())
            return true;
        m_pauses.wait(timeToNextRound());
        if (isOver())
            return true;
    }
}

bool WatchLoop::readRound(WatchListener &listener)
{
    for (size_t i = 0; i < m_readings.size(); ++i) {
        if (!readOne(listener, i))
            return false;
        // Without a connection the others would wait for one each, and in vain.
        if (m_isUnconnected)
            return failOthers(listener, i + 1);
    }
    return true;
}

bool WatchLoop::readOne(WatchListener &listener, size_t index)
{
    const Reading &reading = m_readings[index];
    const std::optional<QByteArray> data = m_session.read(reading.items);
    m_isUnconnected = !data && m_session.failure().kind == FailureKind::CannotConnect;
    if (data) {
        const CommandRecord &command = m_session.lastCommand();
        m_statistics.addSuccess(command.latency(), command.duration());
        std::vector<ValueRow> rows = rowsOf(reading, *data, m_session.stationFor(reading.items));
        for (ValueRow &row : rows) {
            row.time = dateAndTimeText(QDateTime::currentDateTime());
            row.latency = command.latency();
        }
        addTransaction(rows);
        m_lastRows[index] = rows;
        return listener.add(index, rows);
    }
    // What was given up because the run is over is no failure of the slave.
    if (isStopped())
        return true;
    m_failure = m_session.failure();
    m_statistics.addFailure(m_failure->text);
    std::vector<ValueRow> rows = failedRows(index);
    addTransaction(rows);
    return listener.addFailure(index, rows, failureText(index));
}

bool WatchLoop::failOthers(WatchListener &listener, size_t first)
{
    for (size_t i = first; i < m_readings.size() && !isStopped(); ++i) {
        if (!listener.addFailure(i, failedRows(i), failureText(i)))
            return false;
    }
    return true;
}

std::vector<ValueRow> WatchLoop::failedRows(size_t index)
{
    const Reading &reading = m_readings[index];
    const Failure failure = m_session.failure();
    std::vector<ValueRow> rows =
        failedRowsOf(reading, {nameOf(failure.kind), failure.text}, m_session.stationFor(reading.items));
    const QString time = dateAndTimeText(QDateTime::currentDateTime());
    for (ValueRow &row : rows)
        row.time = time;
    const std::vector<ValueRow> &last = m_lastRows[index];
    for (size_t i = 0; i < last.size(); ++i)
        rows[i].earlier = ValueRow::Earlier{last[i].value, last[i].time};
    return rows;
}

QString WatchLoop::failureText(size_t index)
{
    return labelOf(m_readings[index]) + QStringLiteral(": ") + m_session.failure().text;
}

void WatchLoop::addTransaction(std::vector<ValueRow> &rows) const
{
    const CommandRecord &command = m_session.lastCommand();
    for (ValueRow &row : rows) {
        row.duration = command.duration();
        row.attempts = command.attempts();
    }
}

bool WatchLoop::isStopped() const
{
    return m_pauses.isStopped() || (m_settings.duration > 0 && m_clock.elapsed() >= m_settings.duration);
}

bool WatchLoop::isOver() const
{
    return isStopped() || (m_settings.rounds > 0 && m_rounds >= m_settings.rounds);
}

// Rounds keep to their times; those that a long round has missed are left out.
qint64 WatchLoop::timeToNextRound() const
{
    const qint64 now = m_clock.elapsed();
    const qint64 interval = m_settings.interval;
    const qint64 next = interval == 0 ? now : (now / interval + 1) * interval;
    return m_settings.duration > 0 ? std::min(next, m_settings.duration) - now : next - now;
}
