#include "tests/simulation/panel/fault_calendar.h"

#include <algorithm>

namespace
{

const qint64 Second = 1000000;
const qint64 Minute = 60 * Second;

enum Kind {
    Loss,
    Damage,
    Noise,
    Lateness,
    Resets,
    OtherMaster,
    Everything,
    Station,
    GatewayPower,
    ShortPower,
    Kinds
};

const char *const names[] = {"loss",           "damage",     "noise",   "late replies", "resets",
                             "another master", "everything", "station", "gateway",      "gateway, briefly"};

} // namespace

FaultCalendar::FaultCalendar(VirtualTime &time, Gateway &gateway, int stations, qint64 longestDelay,
                             quint32 seed)
    : m_time(time), m_gateway(gateway), m_stations(stations), m_longestDelay(longestDelay), m_random(seed)
{
    planNext();
}

void FaultCalendar::planNext()
{
    m_time.after(between(Minute, 5 * Minute), [this] { begin(); });
}

void FaultCalendar::begin()
{
    const int kind = static_cast<int>(between(0, Kinds - 1));
    const bool isShort = kind == ShortPower;
    ++m_episodes;
    m_isFair = false;
    m_name = names[kind];
    m_isPower = kind >= Station;
    m_faultsBefore = m_gateway.faults();
    m_station = static_cast<int>(between(1, m_stations));
    if (m_isPower)
        setPower(kind, false);
    else
        setWeather(kind);
    m_time.after(isShort ? between(1, Second) : between(Second, 2 * Minute), [this, kind] {
        if (m_isPower)
            setPower(kind, true);
        end();
    });
}

void FaultCalendar::end()
{
    m_gateway.weather = Weather();
    m_isFair = true;
    m_fairSince = std::max(m_time.now(), m_gateway.busyUntil());
    planNext();
}

void FaultCalendar::setWeather(int kind)
{
    Weather weather;
    const bool isAll = kind == Everything;
    weather.loss = kind == Loss || isAll ? chance() : 0;
    weather.damage = kind == Damage || isAll ? chance() : 0;
    weather.noise = kind == Noise || isAll ? chance() : 0;
    weather.lateness = kind == Lateness || isAll ? chance() : 0;
    weather.reset = kind == Resets || isAll ? chance() : 0;
    weather.otherMaster = kind == OtherMaster || isAll ? chance() : 0;
    weather.longestDelay = m_longestDelay;
    m_gateway.weather = weather;
}

void FaultCalendar::setPower(int kind, bool isOn)
{
    if (kind == Station)
        m_gateway.setStationOn(m_station, isOn);
    else
        m_gateway.setOn(isOn);
}

qint64 FaultCalendar::between(qint64 shortest, qint64 longest)
{
    const quint64 draw = (static_cast<quint64>(m_random()) << 32) | m_random();
    return shortest + static_cast<qint64>(draw % static_cast<quint64>(longest - shortest + 1));
}

// From rarely to mostly.
double FaultCalendar::chance()
{
    return static_cast<double>(between(1, 60)) / 100;
}
