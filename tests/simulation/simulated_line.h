#pragma once

#include "desk/channel/line.h"
#include "tests/simulation/virtual_time.h"

class SimulatedLine;

/// The other side of simulated lines.
class LinePeer
{
public:
    virtual ~LinePeer() {}
    /// Whether a connection is taken.
    virtual bool accept(SimulatedLine &line) = 0;
    /// The master has closed it.
    virtual void closed(SimulatedLine &line) = 0;
    virtual void receive(SimulatedLine &line, const QByteArray &bytes) = 0;
};

/// A line whose time is virtual: waiting costs none.
class SimulatedLine : public Line
{
public:
    SimulatedLine(VirtualTime &time, LinePeer &peer) : m_time(time), m_peer(peer) {}

    bool open(qint64 deadline) override;
    void close() override;
    LineState state() override { return m_state; }
    int send(const char *bytes, int size, qint64 deadline) override;
    QByteArray receive(qint64 deadline) override;
    void pause(qint64 until) override;
    QString errorString() const override { return m_error; }
    qint64 now() const override { return m_time.now(); }

    /// For the other side: bytes that arrive now, and the connection's end. Nothing when it is not open.
    void deliver(const QByteArray &bytes);
    void end(LineState how);

private:
    bool passTime(qint64 until);

    VirtualTime &m_time;
    LinePeer &m_peer;
    LineState m_state = LineState::Closed;
    QByteArray m_arrived;
    QString m_error;
};
