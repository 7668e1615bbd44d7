#pragma once

#include "tests/plants/plant.h"

#include <atomic>
#include <thread>

/// A plant on a port of this machine, in real time and in a thread of its own.
class PlantServer : private PlantWire
{
public:
    explicit PlantServer(const PlantOptions &options);
    ~PlantServer() override;
    PlantServer(const PlantServer &) = delete;
    PlantServer &operator=(const PlantServer &) = delete;

    quint16 port() const { return m_port; }

private:
    void serve(const PlantOptions &options);
    void takeConnection(Plant &plant);
    void takeBytes(Plant &plant);
    void dropConnection();
    void deliver(const QByteArray &bytes) override;
    void end(bool isReset) override;

    int m_listener = -1;
    int m_connection = -1;
    quint16 m_port = 0;
    std::atomic<bool> m_isStopping{false};
    std::thread m_thread;
};
