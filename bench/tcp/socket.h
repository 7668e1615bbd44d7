#pragma once

#include <QByteArray>

/// A TCP connection on this machine. Its failures are exceptions.
class Socket
{
public:
    Socket() = default;
    explicit Socket(int connected);
    Socket(Socket &&other) noexcept;
    Socket &operator=(Socket &&other) noexcept;
    ~Socket();

    /// One that waits a second at most.
    static Socket connectedTo(int port);

    void send(const char *bytes, int size);
    /// What is there of \a size bytes, at least one; 0 when the other side has closed the connection.
    int receive(char *bytes, int size);

private:
    int descriptor = -1;
};

/// Listens on a port of this machine that the system chooses.
class Listener
{
public:
    Listener();
    Listener(const Listener &) = delete;
    Listener &operator=(const Listener &) = delete;
    ~Listener();

    int port() const;
    Socket accept();
    /// Ends accept().
    void stop();

private:
    int descriptor;
};
