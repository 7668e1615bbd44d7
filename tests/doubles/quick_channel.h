#pragma once

#include "drivers/device_setting.h"
#include "host/abstract_device_interface.h"

#include <QByteArray>

#include <vector>

/// A channel for millions of commands: it takes no memory for each, and no function of a test runs in
/// between.
class QuickChannel : public AbstractDeviceInterface
{
public:
    struct Frame {
        int size;
        unsigned char bytes[264];
    };

    QuickChannel();

    /// Forgets what was sent.
    void start();
    int sentCount() const { return static_cast<int>(sentFrames); }
    const Frame &sent(int i) const { return frames[static_cast<size_t>(i)]; }
    int closeCount() const { return closes; }

    int readData(char *buffer, int maxLength) override;
    int writeData(const char *data, int length) override;
    bool open() override;
    void close() override;
    DeviceSetting *deviceSetting() const override;
    bool isConnected() const override;
    int retryCount() const override;
    int stationId() const override;
    unsigned int delayTime() const override;
    QString errorString() const override;

protected:
    /// Puts the reply to a request into reply().
    virtual void answer(const Frame &request) = 0;
    Frame &reply() { return incoming; }

private:
    std::vector<Frame> frames;
    size_t sentFrames;
    Frame incoming;
    int taken;
    int closes;
    mutable DeviceSetting setting;
};

/// The CRC of a frame, by a table that is made bit by bit; its low byte travels first.
unsigned int quickCrc(const unsigned char *bytes, int size);
/// Puts the CRC of the first \a size bytes after them, where the frame then ends.
void closeFrame(QuickChannel::Frame &frame, int size);

/// A slave of station 1 at its end whose items are all 0, of whichever number, and which confirms all writes.
class ZerosChannel : public QuickChannel
{
protected:
    void answer(const Frame &request) override;
};

/// The same reply to everything.
class FixedReplyChannel : public QuickChannel
{
public:
    Frame fixed;

protected:
    void answer(const Frame &request) override;
};
