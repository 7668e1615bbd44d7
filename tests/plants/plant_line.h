#pragma once

#include "tests/plants/plant.h"
#include "tests/simulation/simulated_line.h"

/// The other side of a simulated line: a plant.
class PlantPeer : public LinePeer, private PlantWire
{
public:
    explicit PlantPeer(Plant &plant) : m_plant(plant) {}

    bool accept(SimulatedLine &line) override;
    void closed(SimulatedLine & /*line*/) override { m_plant.closed(); }
    void receive(SimulatedLine & /*line*/, const QByteArray &bytes) override { m_plant.receive(bytes); }

private:
    void deliver(const QByteArray &bytes) override { m_line->deliver(bytes); }
    void end(bool isReset) override
    {
        m_line->end(isReset ? LineState::ResetByOther : LineState::ClosedByOther);
    }

    Plant &m_plant;
    SimulatedLine *m_line = nullptr;
};

/// A simulated line to a plant, which may also not be found.
class PlantLine : public Line
{
public:
    PlantLine(VirtualTime &time, Plant &plant) : m_plant(plant), m_peer(plant), m_line(time, m_peer)
    {
        m_line.setCancelled([this] { return isCancelled(); });
    }

    bool open(qint64 deadline) override;
    void close() override { m_line.close(); }
    LineState state() override { return m_line.state(); }
    int send(const char *bytes, int size, qint64 deadline) override
    {
        return m_line.send(bytes, size, deadline);
    }
    QByteArray receive(qint64 deadline) override { return m_line.receive(deadline); }
    void pause(qint64 until) override { m_line.pause(until); }
    QString errorString() const override { return m_error.isEmpty() ? m_line.errorString() : m_error; }
    qint64 now() const override { return m_line.now(); }

private:
    Plant &m_plant;
    PlantPeer m_peer;
    SimulatedLine m_line;
    QString m_error;
};
