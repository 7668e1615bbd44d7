#pragma once

#include "drivers/qt_lines.h"
#include "drivers/tools/timing.h"
#include "host/abstract_device_interface.h"
#include "host/driver_interface.h"

#include <functional>

/// What drivers have in common: the error, the attempts, sending and receiving, and the answers to questions
/// of the host that most drivers have no other answer to. A driver derives from it, has Q_OBJECT,
/// Q_INTERFACES(DriverInterface) and Q_PLUGIN_METADATA of its own, and writes the rest.
class BasicDriver : public QObject, public DriverInterface
{
public:
    bool initialize(AbstractDeviceInterface * /*device*/) override { return true; }
    bool validation(const QString & /*address*/) override { return false; }
    void setDebugMode(bool /*on*/) override {}
    bool isConnected(AbstractDeviceInterface *device) override { return device->isConnected(); }
    bool hasError() override { return m_hasError; }
    QString getLastError() override { return m_lastError; }
    QObject *getThisObject() override { return this; }

protected:
    BasicDriver() : m_hasError(false) {}

    /// Notes an error. False, for those who return it.
    bool fail(const QString &text)
    {
        m_hasError = true;
        m_lastError = text;
        return false;
    }

    /// The same after a broken transmission: what may still come of it must not meet the next request.
    bool failAndClose(AbstractDeviceInterface *device, const QString &text)
    {
        device->close();
        return fail(text);
    }

    /// Tries until \a exchange succeeds, as often as the channel says: each attempt after the channel's
    /// delay, without an error, on an open channel. The exchange notes its own errors.
    bool attempt(AbstractDeviceInterface *device, const std::function<bool()> &exchange)
    {
        for (int retries = device->retryCount();; --retries) {
            HRSleep(device->delayTime());
            m_hasError = false;
            if (!device->isConnected() && !device->open())
                fail(device->errorString());
            else if (exchange())
                return true;
            if (retries <= 0)
                return false;
        }
    }

    /// Sends a request. When not all of it could be sent, the error is the channel's.
    bool send(AbstractDeviceInterface *device, const QByteArray &request)
    {
        if (device->writeData(request.constData(), sizeOf(request)) == sizeOf(request))
            return true;
        return failAndClose(device, device->errorString());
    }

    /// The next \a size bytes of a reply, or as many of them as came in time.
    static QByteArray received(AbstractDeviceInterface *device, int size)
    {
        QByteArray bytes(size, '\0');
        return bytes.left(device->readData(bytes.data(), size));
    }

    /// The station of the link as requests carry it.
    static unsigned char stationOf(AbstractDeviceInterface *device)
    {
        return static_cast<unsigned char>(device->stationId() & 0xFF);
    }

private:
    bool m_hasError;
    QString m_lastError;
};
