#include "tests/simulation/gateway.h"

#include "desk/wire/rtu_frame.h"

#include <algorithm>

namespace
{

const int OtherStation = 200; // nobody here asks it

QByteArray wordBytes(int word)
{
    QByteArray bytes(2, '\0');
    bytes[0] = static_cast<char>(word >> 8);
    bytes[1] = static_cast<char>(word & 0xFF);
    return bytes;
}

QByteArray readReply(int station, int function, const QByteArray &values)
{
    QByteArray frame(3, '\0');
    frame[0] = static_cast<char>(station);
    frame[1] = static_cast<char>(function);
    frame[2] = static_cast<char>(values.size());
    return withCrc(frame + values);
}

} // namespace

bool Weather::isFair() const
{
    return loss + damage + noise + lateness + reset + otherMaster <= 0;
}

void Gateway::addStation(int station, qint64 replyTime, bool answersProbes)
{
    Station &added = m_stations[station];
    added.replyTime = replyTime;
    added.answersProbes = answersProbes;
}

void Gateway::setOn(bool isOn)
{
    m_isOn = isOn;
    ++m_power;
    m_freeAt = m_time.now();
    if (m_connected != nullptr)
        m_connected->end(LineState::ResetByOther);
    m_connected = nullptr;
}

bool Gateway::accept(SimulatedLine &line)
{
    if (!m_isOn)
        return false;
    ++m_connections;
    m_connected = &line;
    return true;
}

void Gateway::closed(SimulatedLine &line)
{
    if (m_connected == &line)
        m_connected = nullptr;
}

void Gateway::receive(SimulatedLine & /*line*/, const QByteArray &bytes)
{
    ++m_requests;
    m_lastValues.clear();
    if (m_watcher)
        m_watcher('>', bytes);
    const auto asked = m_stations.find(byteAt(bytes, 0));
    const bool isLate = happens(weather.lateness);
    const double share = static_cast<double>(m_random()) / 4294967296.0;
    if (!m_isOn || asked == m_stations.end() || !asked->second.isOn)
        return;
    const Station &station = asked->second;
    m_faults += isLate ? 1 : 0;
    const auto range = static_cast<double>(weather.longestDelay - weather.shortestDelay);
    const qint64 delay = isLate ? weather.shortestDelay + static_cast<qint64>(range * share) : 0;
    const qint64 latest = m_time.now() + station.replyTime + weather.longestDelay;
    // One reply after the other.
    const qint64 due = std::max(m_freeAt, m_time.now()) + station.replyTime + delay;
    m_freeAt = std::max(m_freeAt, std::min(due, latest));
    forward(replyTo(bytes, station), m_freeAt);
}

QByteArray Gateway::replyTo(const QByteArray &request, const Station &station)
{
    const int function = functionOf(request);
    if (function == modbus::Diagnostics)
        return station.answersProbes ? request : exceptionReply(request, modbus::IllegalFunction);
    if (!modbus::isRead(function))
        return withCrc(request.left(6));
    m_lastStart = wordAt(request, 2);
    m_lastValues = valuesFor(byteAt(request, 0), wordAt(request, 2), wordAt(request, 4));
    return readReply(byteAt(request, 0), function, m_lastValues);
}

QByteArray Gateway::valuesFor(int station, int start, int quantity)
{
    ++m_read;
    QByteArray values;
    for (int i = 0; i < quantity; ++i)
        values += wordBytes(m_read * 31 + (start + i) * 7 + station);
    return values;
}

void Gateway::forward(const QByteArray &reply, qint64 at)
{
    const quint64 power = m_power;
    m_time.at(at, [this, reply, power] {
        if (power == m_power)
            deliver(reply);
    });
}

void Gateway::deliver(const QByteArray &reply)
{
    if (m_connected == nullptr)
        return;
    const bool isLost = happens(weather.loss);
    const bool isReset = happens(weather.reset);
    const bool isDamaged = happens(weather.damage);
    const bool isNoisy = happens(weather.noise);
    const bool isShared = happens(weather.otherMaster);
    m_faults += isLost || isReset || isDamaged || isNoisy || isShared ? 1 : 0;
    if (isReset) {
        SimulatedLine *line = m_connected;
        m_connected = nullptr;
        line->end(LineState::ResetByOther);
        return;
    }
    if (isShared)
        give(otherExchange());
    if (isNoisy)
        give(noise());
    if (!isLost)
        give(isDamaged ? damaged(reply) : reply);
}

void Gateway::give(const QByteArray &bytes)
{
    if (m_watcher)
        m_watcher('<', bytes);
    m_connected->deliver(bytes);
}

QByteArray Gateway::damaged(QByteArray reply)
{
    const int index = pick(0, static_cast<int>(reply.size()) - 1);
    reply[index] = static_cast<char>(reply.at(index) ^ (1 << pick(0, 7)));
    return reply;
}

QByteArray Gateway::noise()
{
    QByteArray bytes(pick(1, 20), '\0');
    for (int i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(pick(0, 255));
    return bytes;
}

QByteArray Gateway::otherExchange()
{
    QByteArray values;
    for (int i = pick(1, 20); i > 0; --i)
        values += wordBytes(pick(0, 65535));
    return readReply(OtherStation, modbus::ReadHoldingRegisters, values);
}

// Always draws, so that a run does not depend on what chances are 0.
bool Gateway::happens(double chance)
{
    return static_cast<double>(m_random()) / 4294967296.0 < chance;
}

int Gateway::pick(int first, int last)
{
    return first + static_cast<int>(m_random() % static_cast<quint32>(last - first + 1));
}
