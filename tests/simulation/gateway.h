#pragma once

#include "tests/simulation/simulated_line.h"

#include <QByteArray>

#include <functional>
#include <map>
#include <random>

/// What goes wrong between a gateway and its stations, and how often: chances from 0 to 1 for each reply.
struct Weather {
    double loss = 0;
    double damage = 0;        ///< a bit is flipped
    double noise = 0;         ///< bytes in front of the reply
    double lateness = 0;      ///< as late as longestDelay at most
    double reset = 0;         ///< the connection is reset in place of the reply
    double otherMaster = 0;   ///< another master's exchange with another station in front of the reply
    qint64 shortestDelay = 0; ///< of late replies, in microseconds
    qint64 longestDelay = 0;  ///< of late replies, waiting for others included, in microseconds

    bool isFair() const;
};

/// Stations on a serial line behind a gateway that forwards whatever the line says to whoever is connected
/// when it says it, one reply after the other. Every request that reads is answered with values that no other
/// request gets.
class Gateway : public LinePeer
{
public:
    Gateway(VirtualTime &time, quint32 seed) : m_time(time), m_random(seed) {}

    /// A station that takes so long for a reply, and what it does with function 8.
    void addStation(int station, qint64 replyTime, bool answersProbes = true);
    void setStationOn(int station, bool isOn) { m_stations[station].isOn = isOn; }
    /// Without power it refuses connections, and what was on its way is gone.
    void setOn(bool isOn);
    Weather weather;

    /// What the last request that reads must have brought; empty where it was not answered, or is still on
    /// its way.
    const QByteArray &lastValues() const { return m_lastValues; }
    int lastStart() const { return m_lastStart; }
    /// Until when replies are on their way.
    qint64 busyUntil() const { return m_freeAt; }
    /// Hears of every request ('>') and of every reply that goes to a connection ('<').
    void setWatcher(const std::function<void(char, const QByteArray &)> &watcher) { m_watcher = watcher; }
    quint64 requests() const { return m_requests; }
    quint64 connections() const { return m_connections; }
    /// How often something went wrong with a reply.
    quint64 faults() const { return m_faults; }

    bool accept(SimulatedLine &line) override;
    void closed(SimulatedLine &line) override;
    void receive(SimulatedLine &line, const QByteArray &bytes) override;

private:
    struct Station {
        qint64 replyTime = 0;
        bool answersProbes = true;
        bool isOn = true;
    };

    QByteArray replyTo(const QByteArray &request, const Station &station);
    QByteArray valuesFor(int station, int start, int quantity);
    void forward(const QByteArray &reply, qint64 at);
    void deliver(const QByteArray &reply);
    void give(const QByteArray &bytes);
    QByteArray damaged(QByteArray reply);
    QByteArray noise();
    QByteArray otherExchange();
    bool happens(double chance);
    int pick(int first, int last);

    VirtualTime &m_time;
    std::mt19937 m_random;
    std::map<int, Station> m_stations;
    SimulatedLine *m_connected = nullptr;
    bool m_isOn = true;
    quint64 m_power = 0; // how often it was switched
    qint64 m_freeAt = 0;
    QByteArray m_lastValues;
    int m_lastStart = 0;
    std::function<void(char, const QByteArray &)> m_watcher;
    quint64 m_requests = 0;
    quint64 m_connections = 0;
    quint64 m_faults = 0;
    quint16 m_read = 0;
};
