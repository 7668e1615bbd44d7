#pragma once

#include <QString>

#include <thread>

/// A serial line that ends in a TCP connection, for programs that know serial lines only.
class SerialBridge
{
public:
    /// Waits for masters to connect to port(), one after the other.
    SerialBridge();
    /// Connects to a slave.
    explicit SerialBridge(quint16 slavePort);
    ~SerialBridge();
    SerialBridge(const SerialBridge &) = delete;
    SerialBridge &operator=(const SerialBridge &) = delete;

    /// The device file of the line's other end; empty when there is none.
    QString device() const { return name; }
    quint16 port() const { return listenPort; }

private:
    void openLine();
    bool pump();

    int line = -1;
    int farEnd = -1;
    int listener = -1;
    int connection = -1;
    int stopPipe[2] = {-1, -1};
    quint16 listenPort = 0;
    QString name;
    std::thread thread;
};
