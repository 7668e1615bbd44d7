#include "desk/live/watch_loop.h"

#include "desk/time_text.h"

#include <algorithm>

namespace
{

const qint64 IdlePause = 100; // milliseconds

} // namespace

WatchLoop::WatchLoop(Session &session, const std::vector<Reading> &readings, Learnt &learnt,
                     const WatchSettings &settings, const WatchPauses &pauses)
    : m_session(session),
      m_readings(readings),
      m_planned(session, readings, learnt),
      m_settings(settings),
      m_pauses(pauses),
      m_lastRows(readings.size())
{
    m_planned.setPacing(&m_pacing);
}

bool WatchLoop::run(WatchListener &listener)
{
    m_clock.start();
    m_listener = &listener;
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
        m_hasAsked = false;
        if (!m_planned.readRound(*this))
            return false;
        ++m_rounds;
        if (!listener.endRound())
            return false;
        if (isOver())
            return true;
        m_planned.explore();
        m_pauses.wait(timeToNextRound());
        if (isOver())
            return true;
    }
}

void WatchLoop::addCommand(bool isRead)
{
    const CommandRecord &command = m_session.lastCommand();
    m_hasAsked = true;
    if (isRead)
        m_statistics.addSuccess(command.latency(), command.duration());
    else
        m_statistics.addFailure(m_session.failure().text, m_session.failure().advice);
}

bool WatchLoop::add(size_t index, const QByteArray &data)
{
    const Reading &reading = m_readings[index];
    std::vector<ValueRow> rows = rowsOf(reading, data, m_session.stationFor(reading.items));
    for (ValueRow &row : rows) {
        row.time = dateAndTimeText(QDateTime::currentDateTime());
        row.latency = m_session.lastCommand().latency();
    }
    addTransaction(rows);
    m_lastRows[index] = rows;
    return m_listener->add(index, rows);
}

bool WatchLoop::addFailure(const std::vector<size_t> &readings, const Failure &failure)
{
    m_failure = failure;
    const QString error = errorOf(readings, failure);
    return std::all_of(readings.begin(), readings.end(), [&](size_t reading) {
        std::vector<ValueRow> rows = failedRows(reading, failure);
        addTransaction(rows);
        return m_listener->addFailure(reading, rows, error);
    });
}

bool WatchLoop::addNotAsked(const std::vector<size_t> &readings, const Failure &failure)
{
    m_failure = failure;
    const QString error = errorOf(readings, failure);
    return std::all_of(readings.begin(), readings.end(), [&](size_t reading) {
        return m_listener->addNotAsked(reading, failedRows(reading, failure), error);
    });
}

std::vector<ValueRow> WatchLoop::failedRows(size_t index, const Failure &failure) const
{
    const Reading &reading = m_readings[index];
    std::vector<ValueRow> rows = failedRowsOf(reading, {nameOf(failure.kind), failure.text, failure.advice},
                                              m_session.stationFor(reading.items));
    const QString time = dateAndTimeText(QDateTime::currentDateTime());
    for (ValueRow &row : rows)
        row.time = time;
    const std::vector<ValueRow> &last = m_lastRows[index];
    for (size_t i = 0; i < last.size(); ++i)
        rows[i].earlier = ValueRow::Earlier{last[i].value, last[i].time};
    return rows;
}

QString WatchLoop::errorOf(const std::vector<size_t> &readings, const Failure &failure) const
{
    std::vector<const Reading *> failed;
    failed.reserve(readings.size());
    for (const size_t reading : readings)
        failed.push_back(&m_readings[reading]);
    return labelOf(failed) + QStringLiteral(": ") + failure.text;
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
    qint64 next = interval == 0 ? now : (now / interval + 1) * interval;
    // Rounds in which all stations are waited for would follow each other without end.
    if (!m_hasAsked)
        next = std::max(next, now + IdlePause);
    return m_settings.duration > 0 ? std::min(next, m_settings.duration) - now : next - now;
}
