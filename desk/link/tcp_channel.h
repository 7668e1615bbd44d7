#pragma once

#include "desk/items/target.h"
#include "desk/project/device_text.h"
#include "drivers/device_setting.h"
#include "host/abstract_device_interface.h"

#include <QTcpSocket>

#include <functional>

/// How a channel reaches its slave.
struct ChannelSettings {
    QString host = Target().host;
    quint16 port = Target().port;
    int station = Target().station;
    QString device = QLatin1String(DefaultDevice);
    int timeout = 3000;        ///< for each readData(), in milliseconds
    int connectTimeout = 3000; ///< for open(), in milliseconds
    int retries = 3;
    unsigned int delay = 0; ///< before every attempt, in milliseconds
};

enum class ChannelEvent { Opened, OpenFailed, Sent, Received, Discarded, Closed };

/// A byte channel over TCP. Every operation blocks the caller, who needs no event loop of its own.
class TcpChannel : public AbstractDeviceInterface
{
public:
    /// Told of everything that passes, with the bytes of Sent, Received and Discarded; of Sent before the
    /// sending begins, so that a reply's time counts from there.
    using Observer = std::function<void(ChannelEvent, const QByteArray &)>;

    explicit TcpChannel(const ChannelSettings &settings);

    int readData(char *buffer, int maxLength) override;
    /// Throws away first what arrived unasked: a reply that came too late, or the tail of one that was
    /// refused, must not be taken for the answer to this request.
    int writeData(const char *data, int length) override;
    bool open() override;
    void close() override;
    DeviceSetting *deviceSetting() const override;
    /// False also when the other side has closed the connection meanwhile.
    bool isConnected() const override;
    int retryCount() const override;
    int stationId() const override;
    unsigned int delayTime() const override;
    QString errorString() const override;

    void setStation(int station);
    void setPort(quint16 port);
    void setObserver(Observer observer);
    /// While \a cancelled answers true nothing is waited for and nothing tried again.
    void setCancelled(std::function<bool()> cancelled);

private:
    bool isCancelled() const;
    bool waitUntilConnected();
    bool discardUnasked();
    bool sendAll();
    void notify(ChannelEvent event, const QByteArray &bytes = {}) const;

    ChannelSettings m_settings;
    mutable DeviceSetting m_device;
    QTcpSocket m_socket;
    QString m_error;
    Observer m_observer;
    std::function<bool()> m_cancelled;
};
