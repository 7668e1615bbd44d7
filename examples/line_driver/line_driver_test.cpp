#include "drivers/device_setting.h"
#include "drivers/driver_setting.h"
#include "host/abstract_device_interface.h"
#include "host/driver_interface.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QPluginLoader>

#include <cstring>
#include <memory>

/// Loads the plug-in as a host does, and plays the device to it.

namespace
{

// A frame as it lies on the wire: its check and its end are added.
QByteArray framed(const char *text)
{
    int check = 0;
    for (const char *c = text; *c != '\0'; ++c)
        check ^= *c;
    return QByteArray(text) + QByteArray::number(check, 16).rightJustified(2, '0').toUpper() + '\r';
}

// Answers every request with the same bytes.
class Device : public AbstractDeviceInterface
{
public:
    int readData(char *buffer, int maxLength) override
    {
        const QByteArray part = pending.left(maxLength);
        std::memcpy(buffer, part.constData(), static_cast<size_t>(part.size()));
        pending.remove(0, part.size());
        return part.size();
    }
    int writeData(const char *data, int length) override
    {
        sent += QByteArray(data, length);
        pending = answer;
        return length;
    }
    bool open() override
    {
        connected = true;
        return true;
    }
    void close() override { connected = false; }
    DeviceSetting *deviceSetting() const override { return nullptr; }
    bool isConnected() const override { return connected; }
    int retryCount() const override { return retries; }
    int stationId() const override { return 0x1A; }
    unsigned int delayTime() const override { return 0; }
    QString errorString() const override { return QLatin1String("not connected"); }

    QByteArray answer;
    QByteArray sent;
    int retries = 0;
    bool connected = false;

private:
    QByteArray pending;
};

CommunicatorCommand command(const char *address, int count, int dataType = 2)
{
    CommunicatorCommand made;
    made.dataType = dataType;
    made.count = count;
    made.address = QLatin1String(address);
    return made;
}

DriverInterface *loadedDriver()
{
    QPluginLoader loader(QString::fromLocal8Bit(qgetenv("LINE_DRIVER")));
    DriverInterface *driver = qobject_cast<DriverInterface *>(loader.instance());
    EXPECT_TRUE(driver != nullptr) << loader.errorString().toStdString();
    return driver;
}

class LineDriver : public testing::Test
{
protected:
    void SetUp() override
    {
        driver = loadedDriver();
        ASSERT_TRUE(driver != nullptr);
    }

    QByteArray readWords(const char *address, int count)
    {
        return driver->read(&device, command(address, count));
    }

    std::string error() { return driver->hasError() ? driver->getLastError().toStdString() : std::string(); }

    Device device;
    DriverInterface *driver = nullptr;
};

} // namespace

TEST_F(LineDriver, SaysWhatItIs)
{
    EXPECT_EQ(driver->name(), QLatin1String("Line protocol"));
    EXPECT_EQ(driver->getBlockAccessSize(), 64);
    EXPECT_FALSE(driver->isSupportSessionCommand());
    const std::unique_ptr<DeviceSetting> channel(driver->getDefaultSerialDeviceSetting());
    EXPECT_EQ(channel->deviceString, QLatin1String("COM1"));
    const std::unique_ptr<DriverSetting> setting(driver->getDefaultDriverSetting());
    EXPECT_EQ(setting->timeout, 1000);
}

TEST_F(LineDriver, Reads)
{
    device.answer = framed(":1AR1234ABCD");
    EXPECT_EQ(readWords("D100", 2).toHex(), QByteArray("3412cdab"));
    EXPECT_EQ(device.sent, framed(":1AR006302"));
    EXPECT_EQ(error(), "");
}

TEST_F(LineDriver, Writes)
{
    device.answer = framed(":1AW");
    EXPECT_TRUE(driver->write(&device, command("d65535", 2), QByteArray::fromHex("3412CD")));
    EXPECT_EQ(device.sent, framed(":1AWFFFE02123400CD"));
    EXPECT_EQ(error(), "");
}

TEST_F(LineDriver, ReportsRefusals)
{
    device.answer = framed(":1AE07");
    EXPECT_EQ(readWords("D1", 1), QByteArray());
    EXPECT_EQ(error(), "refused with code 07");
    EXPECT_TRUE(device.connected);
    EXPECT_FALSE(driver->write(&device, command("D1", 1), QByteArray(2, 'x')));
    EXPECT_EQ(error(), "refused with code 07");
}

TEST_F(LineDriver, RepeatsAfterADamagedReply)
{
    device.retries = 2;
    device.answer = framed(":1AR1234");
    device.answer[5] = '3';
    EXPECT_EQ(readWords("D1", 1), QByteArray());
    EXPECT_EQ(device.sent, framed(":1AR000001") + framed(":1AR000001") + framed(":1AR000001"));
    EXPECT_EQ(error().find("no valid reply: (0X3a "), 0u) << error();
    EXPECT_FALSE(device.connected);
}

TEST_F(LineDriver, RefusesAnotherStationsReply)
{
    device.answer = framed(":1BR1234");
    EXPECT_EQ(readWords("D1", 1), QByteArray());
    EXPECT_EQ(error().find("unexpected reply: "), 0u) << error();
}

TEST_F(LineDriver, SendsNothingForWhatItCannotDo)
{
    EXPECT_EQ(driver->read(&device, command("D1", 1, 0)), QByteArray());
    EXPECT_EQ(error(), "unsupported data type: 0");
    for (const char *address : {"D0", "D65537", "D", "D1.5", "E1", ""}) {
        EXPECT_EQ(readWords(address, 1), QByteArray());
        EXPECT_EQ(error(), std::string("invalid address: ") + address);
    }
    for (const int count : {0, -1, 65}) {
        EXPECT_EQ(readWords("D1", count), QByteArray());
        EXPECT_EQ(error(), "can't transfer " + std::to_string(count) + " words at D1");
    }
    readWords("D65536", 2);
    EXPECT_EQ(error(), "can't transfer 2 words at D65536");
    EXPECT_EQ(device.sent, QByteArray());
}

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
