#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

/// How it stands with a line's connection.
enum class LineState {
    Closed, ///< by this side, or never opened
    Open,
    ClosedByOther, ///< the other side has ended it; bytes that came before may still be there
    ResetByOther   ///< the other side has cut it off
};

/// The way to the slaves: bytes out, bytes in, and the clock that says how long it took. A TCP connection is
/// one, a simulation with a time of its own another.
class Line
{
public:
    virtual ~Line() {}

    /// Opens a fresh connection; what the one before still held is gone. False with errorString() when there
    /// was none before \a deadline, in microseconds of now().
    virtual bool open(qint64 deadline) = 0;
    /// Drops the connection and every byte that it holds; nothing when it is closed.
    virtual void close() = 0;
    virtual LineState state() = 0;
    /// Sends \a size bytes and returns how many left before \a deadline; errorString() says why not all did.
    virtual int send(const char *bytes, int size, qint64 deadline) = 0;
    /// What has come; where that is nothing, what comes first before \a deadline. A deadline that has passed
    /// waits for nothing. Empty when nothing came, the connection is over or the run is cancelled.
    virtual QByteArray receive(qint64 deadline) = 0;
    /// Lets time pass until \a until; not at all when that is over.
    virtual void pause(qint64 until) = 0;
    /// Why the last operation failed.
    virtual QString errorString() const = 0;
    /// Microseconds of a clock that never goes back.
    virtual qint64 now() const = 0;

    /// While \a cancelled answers true nothing is waited for.
    void setCancelled(const std::function<bool()> &cancelled) { m_cancelled = cancelled; }
    bool isCancelled() const { return m_cancelled && m_cancelled(); }

private:
    std::function<bool()> m_cancelled;
};
