#pragma once

#include "bench/tcp/socket.h"
#include "drivers/device_setting.h"
#include "host/abstract_device_interface.h"

/// A host's TCP channel: what has arrived is kept until the driver asks for it.
class TcpChannel : public AbstractDeviceInterface
{
public:
    explicit TcpChannel(int port);

    int readData(char *bytes, int maxLength) override;
    int writeData(const char *data, int length) override;
    bool open() override { return false; }
    void close() override { connected = false; }
    DeviceSetting *deviceSetting() const override { return &setting; }
    bool isConnected() const override { return connected; }
    int retryCount() const override { return 0; }
    int stationId() const override { return 1; }
    unsigned int delayTime() const override { return 0; }
    QString errorString() const override { return QStringLiteral("no connection"); }

private:
    Socket socket;
    mutable DeviceSetting setting;
    bool connected = true;
    char buffer[512];
    int start = 0;
    int end = 0;
};
