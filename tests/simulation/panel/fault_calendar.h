#pragma once

#include "tests/simulation/gateway.h"

#include <string>

/// Faults of a gateway and its stations that come and go, as a seed has it: at most one episode at a time,
/// and minutes between two.
class FaultCalendar
{
public:
    /// Of \a stations stations from 1 on. No reply is later than \a longestDelay microseconds.
    FaultCalendar(VirtualTime &time, Gateway &gateway, int stations, qint64 longestDelay, quint32 seed);
    FaultCalendar(const FaultCalendar &) = delete;
    FaultCalendar &operator=(const FaultCalendar &) = delete;

    /// From the next episode on.
    void setLongestDelay(qint64 longestDelay) { m_longestDelay = longestDelay; }

    bool isFair() const { return m_isFair; }
    /// When the last episode was over, replies on their way included.
    qint64 fairSince() const { return m_fairSince; }
    /// Whether this episode has done anything yet.
    bool hasHappened() const { return m_isPower || m_gateway.faults() > m_faultsBefore; }
    int episodes() const { return m_episodes; }
    /// This episode, or the last one.
    const std::string &name() const { return m_name; }

private:
    void planNext();
    void begin();
    void end();
    void setWeather(int kind);
    void setPower(int kind, bool isOn);
    qint64 between(qint64 shortest, qint64 longest);
    double chance();

    VirtualTime &m_time;
    Gateway &m_gateway;
    int m_stations;
    qint64 m_longestDelay;
    std::mt19937 m_random;
    bool m_isFair = true;
    qint64 m_fairSince = 0;
    bool m_isPower = false;
    int m_station = 1;
    quint64 m_faultsBefore = 0;
    int m_episodes = 0;
    std::string m_name = "none";
};
