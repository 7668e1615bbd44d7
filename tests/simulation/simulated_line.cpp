#include "tests/simulation/simulated_line.h"

#include <algorithm>

namespace
{

// As long as a real line waits before it asks whether the run was cancelled.
const qint64 Slice = 50000;

} // namespace

bool SimulatedLine::open(qint64 /*deadline*/)
{
    close();
    if (!m_peer.accept(*this)) {
        m_error = QString::fromLatin1("cannot connect to the simulation: Connection refused");
        return false;
    }
    m_state = LineState::Open;
    return true;
}

void SimulatedLine::close()
{
    m_arrived.clear();
    const bool wasOpen = m_state == LineState::Open;
    m_state = LineState::Closed;
    if (wasOpen)
        m_peer.closed(*this);
}

int SimulatedLine::send(const char *bytes, int size, qint64 /*deadline*/)
{
    if (m_state != LineState::Open) {
        m_error = QString::fromLatin1("The remote host closed the connection");
        return 0;
    }
    m_peer.receive(*this, QByteArray(bytes, size));
    return size;
}

QByteArray SimulatedLine::receive(qint64 deadline)
{
    // What is due now has come.
    m_time.runUntil(m_time.now());
    while (m_arrived.isEmpty() && m_state == LineState::Open && passTime(deadline)) {
    }
    QByteArray arrived;
    arrived.swap(m_arrived);
    return arrived;
}

void SimulatedLine::pause(qint64 until)
{
    while (passTime(until)) {
    }
}

// False when the time is over or the run is cancelled.
bool SimulatedLine::passTime(qint64 until)
{
    if (isCancelled() || m_time.now() >= until)
        return false;
    m_time.step(std::min(until, m_time.now() + Slice));
    return true;
}

void SimulatedLine::deliver(const QByteArray &bytes)
{
    if (m_state == LineState::Open)
        m_arrived += bytes;
}

void SimulatedLine::end(LineState how)
{
    if (m_state == LineState::Open)
        m_state = how;
}
