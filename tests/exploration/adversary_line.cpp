#include "tests/exploration/adversary_line.h"

#include "tests/doubles/frames.h"

#include <algorithm>
#include <sstream>

namespace
{

const int Diagnostics = 8;
const qint64 Moment = 1000; // the time before a deadline at which something still comes

} // namespace

bool AdversaryLine::open(qint64 /*deadline*/)
{
    m_arrived.clear();
    m_taken.clear();
    m_isOpen = true;
    return true;
}

void AdversaryLine::close()
{
    m_arrived.clear();
    m_isOpen = false;
}

int AdversaryLine::send(const char *bytes, int size, qint64 /*deadline*/)
{
    m_taken.clear();
    const QByteArray request(bytes, size);
    const bool isProbe = byteAt(request, 1) == Diagnostics;
    if (isProbe) {
        ++m_effort.probes;
    } else {
        ++m_effort.requests;
        m_hasReplied = false;
    }
    const QByteArray reply = replyTo(request);
    const bool isLost = reply.isEmpty() || m_chooser.choose(2, rank()) == 1;
    if (!isLost)
        m_flights.push_back(Flight{reply, m_now, isProbe ? 0 : m_effort.requests});
    return size;
}

QByteArray AdversaryLine::replyTo(const QByteArray &request) const
{
    const int station = byteAt(request, 0);
    const int function = byteAt(request, 1);
    if (function == Diagnostics) {
        if (m_habit == ProbeHabit::Ignores)
            return QByteArray();
        return m_habit == ProbeHabit::Answers ? request : exceptionReply(station, function, 1);
    }
    return isWrite(request) ? echoOf(request) : goodReply(request, bigEndian(m_effort.requests));
}

QByteArray AdversaryLine::receive(qint64 deadline)
{
    if (m_arrived.empty() && !m_flights.empty()) {
        if (m_watcher)
            m_watcher(deadline - m_now);
        letArrive(deadline);
    }
    if (m_arrived.empty())
        m_now = std::max(m_now, deadline);
    QByteArray bytes;
    for (const Flight &flight : m_arrived)
        bytes += flight.bytes;
    m_taken.insert(m_taken.end(), m_arrived.begin(), m_arrived.end());
    m_areTogether = m_arrived.size() > 1;
    m_arrived.clear();
    return bytes;
}

// The next reply comes at once, at the last moment, or not before the deadline.
void AdversaryLine::letArrive(qint64 deadline)
{
    const bool canWait = !mustComeBefore(deadline);
    // Where replies may come at any time nothing depends on the time but the deadline.
    const bool canBeLate = m_longestDelay >= 0 && deadline - m_now > Moment;
    const int choice = m_chooser.choose(1 + (canBeLate ? 1 : 0) + (canWait ? 1 : 0), rank());
    const bool isLate = canBeLate && choice == 1;
    if (choice > (canBeLate ? 1 : 0))
        return;
    if (isLate)
        m_now = canWait ? deadline - Moment : std::max(m_now, m_flights.front().sentAt + m_longestDelay);
    arrive();
}

bool AdversaryLine::mustComeBefore(qint64 time) const
{
    return m_longestDelay >= 0 && !m_flights.empty() && m_flights.front().sentAt + m_longestDelay < time;
}

void AdversaryLine::passIdle(qint64 microseconds)
{
    const qint64 end = m_now + std::max<qint64>(microseconds, 0);
    while (mustComeBefore(end)) {
        m_now = std::max(m_now, m_flights.front().sentAt + m_longestDelay);
        arrive();
    }
    m_now = end;
}

// To nobody, where no connection is open.
void AdversaryLine::arrive()
{
    const Flight flight = m_flights.front();
    m_flights.pop_front();
    if (!m_isOpen)
        return;
    m_arrived.push_back(flight);
    m_hasReplied = m_hasReplied || flight.request == m_effort.requests;
}

std::string AdversaryLine::flightText(const QList<quint16> &probes) const
{
    std::ostringstream text;
    for (const Flight &flight : m_flights) {
        text << ' ' << kindOf(flight, probes);
        if (m_longestDelay >= 0)
            text << '@' << (m_now - flight.sentAt) / Moment;
    }
    for (const Flight &flight : m_arrived)
        text << " !" << kindOf(flight, probes);
    // Of what comes with a reply and behind it, the channel hears with the next request.
    for (const Flight &flight : m_areTogether ? m_taken : std::vector<Flight>())
        text << " =" << kindOf(flight, probes);
    return text.str();
}

std::string AdversaryLine::exchangeText() const
{
    std::ostringstream text;
    text << m_hasReplied;
    for (const Flight &flight : m_taken)
        text << ' ' << kindOf(flight, {}) << (flight.request == m_effort.requests ? "*" : "");
    for (const Flight &flight : m_flights)
        text << (flight.request == m_effort.requests ? " *" : " -");
    return text.str();
}

std::string AdversaryLine::kindOf(const Flight &flight, const QList<quint16> &probes) const
{
    std::ostringstream text;
    const int function = byteAt(flight.bytes, 1);
    text << function << '/' << flight.bytes.size();
    if (function == Diagnostics)
        text << (probes.contains(static_cast<quint16>(wordAt(flight.bytes, 4))) ? '+' : '-');
    return text.str();
}
