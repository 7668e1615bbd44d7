#pragma once

#include "drivers/device_setting.h"
#include "host/abstract_device_interface.h"

#include <QByteArray>

#include <vector>

/// A channel that sends nothing: it keeps the requests and confirms writes. Reads get zeros, so what a driver
/// writes back after reading shows the changed bits alone.
class DryRunChannel : public AbstractDeviceInterface
{
public:
    DryRunChannel(int station, const QString &device);

    int readData(char *buffer, int maxLength) override;
    int writeData(const char *data, int length) override;
    bool open() override { return true; }
    void close() override { m_reply.clear(); }
    DeviceSetting *deviceSetting() const override { return &m_device; }
    bool isConnected() const override { return true; }
    int retryCount() const override { return 0; }
    int stationId() const override { return m_station; }
    unsigned int delayTime() const override { return 0; }
    QString errorString() const override { return {}; }

    const std::vector<QByteArray> &requests() const { return m_requests; }

private:
    int m_station;
    mutable DeviceSetting m_device;
    QByteArray m_reply;
    std::vector<QByteArray> m_requests;
};
