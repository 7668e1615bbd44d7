#pragma once

#include <QByteArray>

/// The other side of a TCP connection on the loopback, without any thread: the kernel takes connections and
/// bytes while the test is elsewhere.
class TcpPeer
{
public:
    /// Listens on a free port; \a backlog limits how many connections wait to be taken.
    explicit TcpPeer(int backlog = 8);
    ~TcpPeer();
    TcpPeer(const TcpPeer &) = delete;
    TcpPeer &operator=(const TcpPeer &) = delete;

    quint16 port() const { return m_port; }
    /// Takes the next connection; the one before is closed.
    bool accept();
    /// Sends and waits until the bytes are in the other side's kernel.
    bool send(const QByteArray &bytes);
    /// Sends as fast as the other side takes it; false when that is gone.
    bool flood(const QByteArray &bytes);
    /// Exactly \a count bytes, fewer when the other side closes or 10 s pass.
    QByteArray receive(int count);
    /// Whether the other side has closed or reset the connection; waits for it for 10 s.
    bool seesEnd();
    void close();
    void stopListening();

private:
    bool isReadable() const;

    int m_listener = -1;
    int m_connection = -1;
    quint16 m_port = 0;
};
