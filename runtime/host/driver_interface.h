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

    /// A fixed number of the driver; its meaning is the host's.
    virtual int totalSize() = 0;
    /// Writes \a data as \a command says. True when the slave confirmed it; otherwise getLastError() has the
    /// reason.
    virtual bool write(AbstractDeviceInterface *device, const CommunicatorCommand &command,
                       const QByteArray &data) = 0;
    /// Reads what \a command says. Empty on failure, with hasError() true and the reason in getLastError().
    virtual QByteArray read(AbstractDeviceInterface *device, const CommunicatorCommand &command) = 0;
    /// Called by hosts that prepare a channel; true when the driver has nothing against it.
    virtual bool initialize(AbstractDeviceInterface *device) = 0;
    /// Whether the driver checks address texts ahead of their use and accepts \a address.
    virtual bool validation(const QString &address) = 0;
    /// Name of the protocol, as people choose it from a list.
    virtual QString name() { return notAssigned(); }
    /// Maker of the devices.
    virtual QString vender() { return notAssigned(); }
    /// Version of the driver.
    virtual QString getVersionNumber() { return notAssigned(); }
    /// Default settings of the channel, newly made; the caller owns them.
    virtual DeviceSetting *getDefaultSerialDeviceSetting() = 0;
    /// Default settings of the driver, newly made; the caller owns them.
    virtual DriverSetting *getDefaultDriverSetting() = 0;
    /// Default settings as a text whose form is the host's.
    virtual QString getStringBasedDefaultDriverSetting() { return QLatin1String("RS232,9600,EVEN,7,1"); }
    /// Bit set of the kinds of channel that the driver runs on; the host defines the bits.
    virtual int supportedCommunicationFlags() = 0;
    /// Switches the driver's aids to debugging, if it has any.
    virtual void setDebugMode(bool on) = 0;
    /// Maximum number of registers in one request.
    virtual int getBlockAccessSize() = 0;
    /// Maximum number of bits in one request.
    virtual int getBitBlockAccessSize() = 0;
    /// Whether the last transaction failed.
    virtual bool hasError() = 0;
    /// Text of the last failure; a later success clears hasError() and leaves the text.
    virtual QString getLastError() = 0;
    /// The driver as the QObject that it also is.
    virtual QObject *getThisObject() = 0;
    /// Whether the driver takes session commands. If not, the two operations that follow do nothing.
    virtual bool isSupportSessionCommand() { return false; }
    /// Replaces the session commands.
    virtual void setSessionCommand(const QList<CommunicatorCommand> & /*commands*/) {}
    /// Drops the session commands.
    virtual void clearSessionCommand() {}
    /// Says that the settings of the channel have changed. True when the driver goes on with them.
    virtual bool deviceSettingChanged(DeviceSetting * /*setting*/) { return true; }
    /// Whether the channel serves the driver, as the driver sees it.
    virtual bool isConnected(AbstractDeviceInterface * /*device*/) { return true; }

private:
    static QString notAssigned() { return QLatin1String("Not Assigned"); }
};

Q_DECLARE_INTERFACE(DriverInterface, "com.brenwick.drivers.DriverInterface/1.1")
