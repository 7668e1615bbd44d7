#pragma once

#include "drivers/device_setting.h"
#include "fuzz/support/input.h"
#include "host/abstract_device_interface.h"

#include <QByteArray>
#include <QList>
#include <QVector>

#include <functional>

namespace fuzz
{

/// One request, and what the driver was given for it.
struct Exchange {
    QByteArray request;
    int sent = 0;
    /// The bytes of each stage, and how many of them readData() claimed.
    QVector<QByteArray> stages;
    QVector<int> counts;

    /// The reply as it lies in a buffer of zeros.
    QByteArray reply() const;
    QByteArray data() const { return reply().mid(3); }
};

/// What has to come of an exchange: the text of its failure, none after a good reply, and whether the channel
/// is closed.
struct Verdict {
    QString error;
    bool closes;
};

/// A channel with a slave at its end that answers every request well. Bytes that are not asked for wait for
/// the next exchange, as on a real stream.
class SlaveChannel : public AbstractDeviceInterface
{
public:
    int readData(char *buffer, int maxLength) override;
    int writeData(const char *bytes, int length) override;
    bool open() override;
    void close() override;
    DeviceSetting *deviceSetting() const override { return &setting; }
    bool isConnected() const override;
    int retryCount() const override { return retries; }
    int stationId() const override { return station; }
    unsigned int delayTime() const override { return 0; }
    QString errorString() const override { return QStringLiteral("the channel's own text"); }

    Verdict judge(const Exchange &exchange) const;
    QList<Exchange> lastAttempt() const { return exchanges.mid(attemptStart); }

    int station = 1;
    int retries = 0;
    bool connected = true;
    /// What a read is answered with; zeros follow.
    std::function<QByteArray(const QByteArray &request)> data;

    QList<Exchange> exchanges;
    mutable int attempts = 0;
    int closes = 0;
    bool openFailed = false;

protected:
    virtual QByteArray answer(const QByteArray &request);
    virtual int sentOf(int length) { return length; }
    virtual int countOf(int taken) { return taken; }
    virtual bool opens() { return true; }

private:
    mutable DeviceSetting setting{DefaultDeviceType, QStringLiteral("COM1"), 9600, 8, 0, 2};
    mutable int attemptStart = 0;
    QByteArray waiting;
};

/// The same with every fault that an input asks for.
class FaultyChannel : public SlaveChannel
{
public:
    explicit FaultyChannel(Input &bytes) : input(bytes) {}

protected:
    QByteArray answer(const QByteArray &request) override;
    int sentOf(int length) override;
    int countOf(int taken) override;
    bool opens() override;

private:
    Input &input;
    std::uint8_t fault = 0;
};

} // namespace fuzz
