#include "tests/plants/plant_line.h"

#include "desk/link/tcp_line.h"

bool PlantPeer::accept(SimulatedLine &line)
{
    m_line = &line;
    return m_plant.accept(*this);
}

// What a line over TCP says in these cases.
bool PlantLine::open(qint64 deadline)
{
    m_error.clear();
    switch (m_plant.options().port) {
    case PlantOptions::Port::UnknownHost:
        m_line.pause(now() + 20000);
        m_error = QStringLiteral("cannot connect to plant.invalid:502: ") + QLatin1String(UnknownHost);
        return false;
    case PlantOptions::Port::Unreachable:
        m_line.pause(deadline);
        m_error = QStringLiteral("cannot connect to 10.0.0.5:502: no answer");
        return false;
    default: return m_line.open(deadline);
    }
}
