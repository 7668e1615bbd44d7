#pragma once

#include <QByteArray>

#include <functional>

/// What happens on a channel's line.
enum class ChannelEvent {
    Opened,
    OpenFailed,
    Sent,          ///< reported before the first byte leaves, so that a reply's time counts from there
    Received,      ///< what the driver gets
    Discarded,     ///< came unasked and was thrown away before a request
    Closed,        ///< by this side
    ClosedByOther, ///< noticed once for each connection
    ResetByOther
};

/// Gets every event, with the bytes of Sent, Received and Discarded.
typedef std::function<void(ChannelEvent, const QByteArray &)> ChannelObserver;
