#pragma once

#include "drivers/device_setting.h"
#include "host/abstract_device_interface.h"

#include <QByteArray>

#include <unordered_map>

/// A channel in memory: every request is answered at once with a frame that was made when such a request
/// first came. It records nothing and takes nothing from the heap, which would be counted with the driver;
/// counts.py leaves its instructions out by the name of the class.
class CannedChannel : public AbstractDeviceInterface
{
public:
    explicit CannedChannel(const QString &port = QStringLiteral("ETHERNET"));

    int readData(char *buffer, int maxLength) override;
    int writeData(const char *data, int length) override;
    bool open() override { return true; }
    void close() override {}
    DeviceSetting *deviceSetting() const override { return &setting; }
    bool isConnected() const override { return true; }
    int retryCount() const override { return 0; }
    int stationId() const override { return station; }
    unsigned int delayTime() const override { return 0; }
    QString errorString() const override { return QString(); }

    void setStation(int id) { station = id; }
    int requestCount() const { return requests; }
    /// Registers or bits of all requests.
    int requestedItems() const { return items; }

private:
    mutable DeviceSetting setting;
    std::unordered_map<quint64, QByteArray> replies;
    const QByteArray *reply = nullptr;
    int position = 0;
    int requests = 0;
    int items = 0;
    int station = 1;
};
