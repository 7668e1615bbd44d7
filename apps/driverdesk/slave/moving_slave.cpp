#include "apps/driverdesk/slave/moving_slave.h"

#include <chrono>

namespace
{

const int MoveInterval = 100; // milliseconds

qint64 steadyMilliseconds()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

} // namespace

MovingSlave::MovingSlave(QObject *parent) : QObject(parent)
{
    connect(&m_values, &SlaveValuesModel::numberSet, this, &MovingSlave::putNumber);
    connect(&m_faults, &FaultSwitches::changed, this, [this] {
        if (m_slave)
            m_slave->setFaults(m_faults.plan());
    });
    connect(&m_timer, &QTimer::timeout, this, [this] { moveTo(steadyMilliseconds()); });
}

Result<> MovingSlave::start(quint16 port, const QList<int> &stations)
{
    stop();
    SlaveOptions options;
    options.port = port;
    options.stations = stations;
    options.faults = m_faults.plan();
    m_stations = stations;
    m_slave = std::make_unique<SlaveThread>(options);
    if (!m_slave->start()) {
        const QString reason = m_slave->errorString();
        m_slave.reset();
        return Error{tr("The slave cannot listen on port %1: %2").arg(port).arg(reason)};
    }
    putAll();
    m_timer.start(MoveInterval);
    emit runningChanged(true);
    return {};
}

void MovingSlave::stop()
{
    m_timer.stop();
    if (!m_slave)
        return;
    m_slave.reset();
    emit runningChanged(false);
}

SlaveCounts MovingSlave::counts()
{
    return isRunning() ? m_slave->counts() : SlaveCounts();
}

void MovingSlave::setSeed(quint32 seed)
{
    m_seed = seed;
    m_faults.setSeed(seed);
}

QList<SlaveMemory::Value> MovingSlave::shownPlaces() const
{
    QList<SlaveMemory::Value> places;
    for (const SlaveValue &value : m_values.values()) {
        // A value of a station that the slave does not have any more keeps its row.
        const int station = m_stations.contains(value.station) ? value.station : m_stations.first();
        places.append({station, value.area, value.offset, value.value});
    }
    return places;
}

void MovingSlave::putNumber(int row)
{
    if (isRunning())
        m_slave->setValues({shownPlaces().at(row)});
}

void MovingSlave::putAll()
{
    m_slave->setValues(shownPlaces());
}

void MovingSlave::moveTo(qint64 milliseconds)
{
    if (!isRunning())
        return;
    const std::vector<SlaveValue> &values = m_values.values();
    const QList<SlaveMemory::Value> places = shownPlaces();
    QList<SlaveMemory::Value> moved;
    for (int i = 0; i < places.size(); ++i) {
        const SlaveValue &value = values[static_cast<size_t>(i)];
        if (value.movement.kind == Movement::None)
            continue;
        SlaveMemory::Value next = places.at(i);
        next.value = static_cast<quint16>(
            valueAt(value.movement, milliseconds, m_seed + static_cast<quint32>(i), value.value));
        moved.append(next);
    }
    m_slave->setValues(moved);
    std::vector<quint16> numbers;
    for (const SlaveMemory::Value &place : m_slave->valuesAt(places))
        numbers.push_back(place.value);
    m_values.takeNumbers(numbers);
}
