#pragma once

#include <QByteArray>

#include <functional>

/// What happens on a channel's line.
enum class ChannelEvent {
    Opened,
    OpenFailed,
    Sent,         ///< reported before the first byte leaves, so that a reply's time counts from there
    Received,     ///< what the driver gets
    Discarded,    ///< came unasked and was thrown away before a request
    SkippedNoise, ///< in front of a reply: bytes that are no frame
    SkippedFrame, ///< in front of a reply: a frame of another exchange
    SkippedCopy,  ///< in front of a reply: the request, as a line that echoes returns it
    ProbeSent,    ///< function 8, to settle the line
    ProbeAnswered,
    Withheld,      ///< a request that was not sent, since the line did not settle in time
    Closed,        ///< by this side
    ClosedByOther, ///< noticed once for each connection
    ResetByOther
};

/// Gets every event, with the bytes that it is about.
typedef std::function<void(ChannelEvent, const QByteArray &)> ChannelObserver;
