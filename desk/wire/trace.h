#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <functional>

/// Traces: one line a frame with the time, the direction, the bytes and what they mean.
///
///     12:34:56.789+01:00 > 01 03 00 00 00 02 C4 0B  station 1, read holding registers, HR1..2 (offset 0, ...
///
/// `text2pcap -r` reads the lines as they stand.

/// As the program that writes the trace sees it; printed as ">", "<" and "!".
enum class FrameDirection { Sent, Received, Dropped };

QString traceLine(const QDateTime &time, FrameDirection direction, const QByteArray &bytes,
                  const QString &meaning);
/// A line without bytes: a connection made, a time-out.
QString traceEvent(const QDateTime &time, const QString &text);

/// Takes one line, without a line feed. May be empty: no trace.
using TraceSink = std::function<void(const QString &line)>;

/// The trace of a master's channel, which gets a reply in pieces: a line is written when the reply is whole,
/// or as it stands when something else happens.
class MasterTrace
{
public:
    explicit MasterTrace(TraceSink sink = TraceSink());
    ~MasterTrace();
    MasterTrace(const MasterTrace &) = delete;
    MasterTrace &operator=(const MasterTrace &) = delete;

    void sent(const QByteArray &bytes);
    void received(const QByteArray &bytes);
    /// Bytes that the channel threw away: the rest of a reply that was refused before its end, or what nobody
    /// asked for.
    void dropped(const QByteArray &bytes);
    /// Bytes in front of a reply, and why they are none of it.
    void skipped(const QByteArray &bytes, const QString &reason);
    void event(const QString &text);
    void flush();

private:
    void write(FrameDirection direction, const QByteArray &bytes, const QString &meaning);
    int restSize(const QByteArray &dropped) const;

    TraceSink m_sink;
    QByteArray m_request;
    QByteArray m_reply;   // so far
    QByteArray m_refused; // the reply before what is dropped now
};
