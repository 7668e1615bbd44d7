#pragma once

#include "desk/channel/line.h"
#include "drivers/device_setting.h"

class QTcpSocket;

/// The end of what errorString() says when the host's name stands for no address.
const char *const UnknownHost = "unknown host name";

/// A line over TCP, to the current endpoint of a device setting.
class TcpLine : public Line
{
public:
    /// The setting stays the caller's, and is read again whenever the line is opened.
    explicit TcpLine(const DeviceSetting &device) : m_device(device) {}
    ~TcpLine() override { close(); }
    TcpLine(const TcpLine &) = delete;
    TcpLine &operator=(const TcpLine &) = delete;

    bool open(qint64 deadline) override;
    void close() override;
    LineState state() override;
    int send(const char *bytes, int size, qint64 deadline) override;
    QByteArray receive(qint64 deadline) override;
    void pause(qint64 until) override;
    QString errorString() const override { return m_error; }
    qint64 now() const override;

private:
    bool waitUntilConnected(QTcpSocket &connector, qint64 deadline) const;
    bool waitFor(short events, qint64 deadline) const;
    void noteEnd(int error);

    const DeviceSetting &m_device;
    int m_descriptor = -1;
    LineState m_state = LineState::Closed;
    QString m_error;
};
