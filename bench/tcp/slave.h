#pragma once

#include "bench/tcp/socket.h"

#include <thread>

/// How a slave's frames are made: as on a serial line, or as on Modbus/TCP.
enum class Framing { Rtu, Mbap };

/// Serves one connection from a thread of its own. Answers are made once and then only sent.
class Slave
{
public:
    explicit Slave(Framing framing);
    Slave(const Slave &) = delete;
    Slave &operator=(const Slave &) = delete;
    /// The client must have closed its connection.
    ~Slave();

    int port() const { return listener.port(); }

private:
    Listener listener;
    std::thread thread;
};
