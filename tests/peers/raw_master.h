#pragma once

#include <QByteArray>

/// A master's end of a connection as the operating system has it: nothing buffered, nothing retried.
class RawMaster
{
public:
    enum class End { StillOpen, Closed, Reset };

    /// Connects to a port of this machine.
    explicit RawMaster(quint16 port);
    ~RawMaster();
    RawMaster(const RawMaster &) = delete;
    RawMaster &operator=(const RawMaster &) = delete;

    bool isConnected() const { return descriptor >= 0; }
    /// In one segment.
    void send(const QByteArray &bytes);
    /// What has come when there are \a size bytes, the connection has ended, or the time is over.
    QByteArray receive(int size, int timeoutMs = 5000);
    /// What one segment brought, at most.
    QByteArray receiveSegment(int timeoutMs = 5000);
    /// Whether nothing comes within \a timeoutMs.
    bool isSilent(int timeoutMs);
    /// How the connection has ended; waits for it. Bytes on the way are lost.
    End waitForEnd(int timeoutMs = 5000);

    /// Sends a request without its CRC, given as hexadecimal digits, and returns the reply to it without its
    /// CRC, as such digits; "bad CRC: ..." or what there is of a reply that is not whole.
    QByteArray ask(const char *request);

private:
    bool waitForBytes(int timeoutMs) const;

    int descriptor = -1;
    End end = End::StillOpen;
};

/// A frame from hexadecimal digits, with its CRC.
QByteArray frameOf(const char *hexWithoutCrc);
