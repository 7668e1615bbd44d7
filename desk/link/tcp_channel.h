#pragma once

#include "desk/channel/line_channel.h"
#include "desk/items/target.h"
#include "desk/link/tcp_line.h"
#include "desk/link_defaults.h"

/// How a channel reaches its slave.
struct ChannelSettings : ExchangeSettings {
    QString host = Target().host;
    quint16 port = Target().port;
    QString device = QLatin1String(DefaultDevice);
};

/// The record of the link that a driver is shown.
DeviceSetting deviceSettingOf(const ChannelSettings &settings);

/// What a TcpChannel is made of.
struct TcpEnd {
    explicit TcpEnd(const ChannelSettings &settings) : device(deviceSettingOf(settings)), line(device) {}

    DeviceSetting device;
    TcpLine line;
};

/// A byte channel over TCP, to the endpoint in deviceSetting(). Its caller needs no event loop.
class TcpChannel : private TcpEnd, public LineChannel
{
public:
    explicit TcpChannel(const ChannelSettings &settings)
        : TcpEnd(settings), LineChannel(line, &device, settings)
    {
    }
};
