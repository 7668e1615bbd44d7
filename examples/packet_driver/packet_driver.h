#pragma once

#include "packet.h"
#include "sdk/basic_driver.h"

/// Reads and writes the memory of devices that speak the packet protocol. Addresses are M0 to M16777215, M0
/// the first byte; items are bytes, blocks, words and double words, their low byte at the lower address.
class PacketDriver : public BasicDriver
{
    Q_OBJECT
    Q_INTERFACES(DriverInterface)
    Q_PLUGIN_METADATA(IID "com.brenwick.drivers.DriverInterface/1.1")

public:
    PacketDriver();

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
    bool exchange(AbstractDeviceInterface *device, PacketOperation operation, const QByteArray &content,
                  int size, QByteArray &answer);
    bool judge(const Packet &answer, const Packet &request, int size);

    unsigned short m_sequence;
};

/// A new driver object, owned by the caller.
extern "C" Q_DECL_EXPORT DriverInterface *CreateDriver();
