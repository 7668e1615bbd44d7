#pragma once

#include "host/communicator_command.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QtPlugin>

class AbstractDeviceInterface;
class QObject;
struct DeviceSetting;
struct DriverSetting;

/// What the host calls on every communication driver. The order of the operations is the order of the virtual
/// table and part of the binary contract with the host.
///
/// All operations of one driver object are called from one thread at a time. None of them throws.
class DriverInterface
{
public:
    virtual ~DriverInterface() {}

    virtual int totalSize() = 0;
    /// Writes \a data as \a command says. True when the slave confirmed it; otherwise getLastError() has the
    /// reason.
    virtual bool write(AbstractDeviceInterface *device, const CommunicatorCommand &command,
                       const QByteArray &data) = 0;
    /// Reads what \a command says. Empty on failure, with hasError() true and the reason in getLastError().
    virtual QByteArray read(AbstractDeviceInterface *device, const CommunicatorCommand &command) = 0;
    virtual bool initialize(AbstractDeviceInterface *device) = 0;
    virtual bool validation(const QString &address) = 0;
    virtual QString name() { return notAssigned(); }
    virtual QString vender() { return notAssigned(); }
    virtual QString getVersionNumber() { return notAssigned(); }
    /// Default settings of the channel, newly made; the caller owns them.
    virtual DeviceSetting *getDefaultSerialDeviceSetting() = 0;
    /// Default settings of the driver, newly made; the caller owns them.
    virtual DriverSetting *getDefaultDriverSetting() = 0;
    virtual QString getStringBasedDefaultDriverSetting() { return QLatin1String("RS232,9600,EVEN,7,1"); }
    virtual int supportedCommunicationFlags() = 0;
    virtual void setDebugMode(bool on) = 0;
    /// Largest number of registers in one request.
    virtual int getBlockAccessSize() = 0;
    /// Largest number of bits in one request.
    virtual int getBitBlockAccessSize() = 0;
    /// Whether the last transaction failed.
    virtual bool hasError() = 0;
    /// Text of the last failure; a later success clears hasError() and leaves the text.
    virtual QString getLastError() = 0;
    virtual QObject *getThisObject() = 0;
    virtual bool isSupportSessionCommand() { return false; }
    virtual void setSessionCommand(const QList<CommunicatorCommand> & /*commands*/) {}
    virtual void clearSessionCommand() {}
    virtual bool deviceSettingChanged(DeviceSetting * /*setting*/) { return true; }
    virtual bool isConnected(AbstractDeviceInterface * /*device*/) { return true; }

private:
    static QString notAssigned() { return QLatin1String("Not Assigned"); }
};

Q_DECLARE_INTERFACE(DriverInterface, "com.brenwick.drivers.DriverInterface/1.1")
