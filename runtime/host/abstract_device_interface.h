#pragma once

#include <QString>

struct DeviceSetting;

/// The host's byte channel to one slave, usually a TCP connection. The host owns it, opens and configures it.
///
/// The order of the virtual operations is a binary contract: the driver calls them by their place in the
/// virtual table, counted from 0 with the two destructors in 0 and 1. The numbered operations that do nothing
/// keep the places of those that the driver never calls; a panel's own declaration of this class has others
/// there.
class AbstractDeviceInterface
{
public:
    virtual ~AbstractDeviceInterface() {}

    /// Waits until \a maxLength bytes have arrived or the channel's time-out has passed. Returns how many
    /// bytes were placed in \a buffer; 0 or less when nothing came. The driver asks for exact counts and
    /// takes fewer as a failure.
    virtual int readData(char *buffer, int maxLength) = 0;
    virtual void slot3() {}
    /// Sends \a length bytes and returns how many were sent.
    virtual int writeData(const char *data, int length) = 0;
    /// (Re)opens the channel; false when that failed, with the reason in errorString().
    virtual bool open() = 0;
    /// Closes the channel; nothing when it is closed.
    virtual void close() = 0;
    virtual void slot7() {}
    /// The settings of this link, never null; the host keeps the ownership. Asked only while the project
    /// database is not loaded.
    virtual DeviceSetting *deviceSetting() const = 0;
    virtual void slot9() {}
    virtual void slot10() {}
    virtual void slot11() {}
    virtual void slot12() {}
    virtual void slot13() {}
    virtual void slot14() {}
    virtual void slot15() {}
    /// Whether the channel is open.
    virtual bool isConnected() const = 0;
    virtual void slot17() {}
    virtual void slot18() {}
    /// Number of further attempts after a failed one; 0 or less means one attempt in all.
    virtual int retryCount() const = 0;
    /// Station (slave) id of the link. Requests carry its low 8 bits; a reply must match the whole value.
    virtual int stationId() const = 0;
    virtual void slot21() {}
    /// Pause before every attempt, in milliseconds (see HRSleep()).
    virtual unsigned int delayTime() const = 0;
    virtual void slot23() {}
    virtual void slot24() {}
    /// The text of the channel's last error.
    virtual QString errorString() const = 0;
};
