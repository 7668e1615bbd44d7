#pragma once

#include <QByteArray>

/// Finds requests in a byte stream, however it was cut into segments. A request is recognised by its length,
/// which its function gives, and its CRC; where both do not fit, bytes are dropped until they do.
class RtuDeframer
{
public:
    void add(const QByteArray &bytes) { m_buffer += bytes; }
    /// The next whole request with its CRC; empty when there is none yet.
    QByteArray next();
    /// The line has been silent: what has begun will not be completed. Call next() afterwards.
    void giveUp();
    /// Whether a request has begun.
    bool isPending() const { return !m_buffer.isEmpty(); }
    /// The bytes dropped since the last call.
    QByteArray takeDropped();

private:
    int frameSizeAt(int position) const;
    int frameWithinReach() const;
    void drop(int size);

    QByteArray m_buffer;
    QByteArray m_dropped;
};
