#pragma once

#include "desk/link/recorder.h"
#include "desk/link/tcp_channel.h"
#include "desk/wire/trace.h"

/// How to reach slaves through the driver.
struct LinkSettings {
    ChannelSettings channel;
    QString plugin;       ///< file; empty for the default places
    QString project;      ///< file; empty for one that is made from these settings
    TraceSink trace;      ///< of every frame; empty for none
    QString recordFile;   ///< for driver-conformance; empty for none
    RecordSink record;    ///< of every command; empty for none
    QString targetOrigin; ///< who said where the link leads, for people; empty when nobody did

    Target target() const { return {channel.host, channel.port, channel.station}; }
};
