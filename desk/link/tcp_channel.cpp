#include "desk/link/tcp_channel.h"

DeviceSetting deviceSettingOf(const ChannelSettings &settings)
{
    DeviceSetting device(DefaultDeviceType, settings.device, 9600, 8, 0, 2);
    device.setSocketData({{settings.host, QString::number(settings.port)}});
    return device;
}
