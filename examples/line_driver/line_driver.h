#pragma once

#include "drivers/qt_lines.h"
#include "host/driver_interface.h"

/// Reads and writes the registers of devices that speak the line protocol. Addresses are D1 to D65536, D1 the
/// first register; items are words.
class LineDriver : public QObject, public DriverInterface
{
    Q_OBJECT
    Q_INTERFACES(DriverInterface)
    Q_PLUGIN_METADATA(IID "com.brenwick.drivers.DriverInterface/1.1")

public:
    LineDriver();

    int totalSize() override;
    bool write(AbstractDeviceInterface *device, const CommunicatorCommand &command,
               const QByteArray &data) override;
    QByteArray read(AbstractDeviceInterface *device, const CommunicatorCommand &command) override;
    bool initialize(AbstractDeviceInterface *device) override;
    bool validation(const QString &address) override;
    QString name() override;
    QString vender() override;
    QString getVersionNumber() override;
    DeviceSetting *getDefaultSerialDeviceSetting() override;
    DriverSetting *getDefaultDriverSetting() override;
    int supportedCommunicationFlags() override;
    void setDebugMode(bool on) override;
    int getBlockAccessSize() override;
    int getBitBlockAccessSize() override;
    bool hasError() override;
    QString getLastError() override;
    QObject *getThisObject() override;

private:
    bool accepts(const CommunicatorCommand &command);
    bool transfer(AbstractDeviceInterface *device, const QByteArray &request, char kind, int digits,
                  QByteArray &answer);
    bool exchange(AbstractDeviceInterface *device, const QByteArray &request, char kind, int digits,
                  QByteArray &answer);
    bool fail(const QString &text);

    bool errorFlag;
    QString lastError;
};

/// A new driver object, owned by the caller.
extern "C" Q_DECL_EXPORT DriverInterface *CreateDriver();
