#pragma once

#include "sdk/basic_driver.h"

/// Reads and writes the registers of devices that speak the line protocol. Addresses are D1 to D65536, D1 the
/// first register; items are words.
class LineDriver : public BasicDriver
{
    Q_OBJECT
    Q_INTERFACES(DriverInterface)
    Q_PLUGIN_METADATA(IID "com.brenwick.drivers.DriverInterface/1.1")

public:
    QByteArray read(AbstractDeviceInterface *device, const CommunicatorCommand &command) override;
    bool write(AbstractDeviceInterface *device, const CommunicatorCommand &command,
               const QByteArray &data) override;

    QString name() override;
    QString vender() override;
    QString getVersionNumber() override;
    int totalSize() override;
    int supportedCommunicationFlags() override;
    int getBlockAccessSize() override;
    int getBitBlockAccessSize() override;
    DeviceSetting *getDefaultSerialDeviceSetting() override;
    DriverSetting *getDefaultDriverSetting() override;

private:
    bool accepts(const CommunicatorCommand &command);
    bool exchange(AbstractDeviceInterface *device, const QByteArray &request, char kind, int digits,
                  QByteArray &answer);
};

/// A new driver object, owned by the caller.
extern "C" Q_DECL_EXPORT DriverInterface *CreateDriver();
