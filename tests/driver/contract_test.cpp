#include "drivers/device_setting.h"
#include "host/abstract_device_interface.h"
#include "host/driver_interface.h"
#include "tests/support/gtest_qt.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

// Hosts are compiled apart from the driver and meet it by places in virtual tables, so the places are pinned.

namespace
{

// The place in the virtual table, counted from 0, that a pointer to a virtual member stands for. It holds the
// offset in the table; what distinguishes it from a plain function's address is the lowest bit, of the offset
// itself or, on ARM, of the adjustment ("Itanium C++ ABI", 2.3; "C++ ABI for the Arm Architecture", 3.2.1).
template <typename Member>
int slotOf(Member member)
{
    std::ptrdiff_t fields[2] = {0, 0};
    static_assert(sizeof member == sizeof fields, "a pointer to a member is a pair");
    std::memcpy(fields, &member, sizeof fields);
    if (((fields[0] | fields[1]) & 1) == 0)
        return -1;
    return static_cast<int>((fields[0] & ~std::ptrdiff_t(1)) / static_cast<std::ptrdiff_t>(sizeof(void *)));
}

// The least that a driver must have.
class BareDriver : public DriverInterface
{
public:
    int totalSize() override { return 0; }
    bool write(AbstractDeviceInterface * /*device*/, const CommunicatorCommand & /*command*/,
               const QByteArray & /*data*/) override
    {
        return false;
    }
    QByteArray read(AbstractDeviceInterface * /*device*/, const CommunicatorCommand & /*command*/) override
    {
        return QByteArray();
    }
    bool initialize(AbstractDeviceInterface * /*device*/) override { return false; }
    bool validation(const QString & /*address*/) override { return true; }
    DeviceSetting *getDefaultSerialDeviceSetting() override { return nullptr; }
    DriverSetting *getDefaultDriverSetting() override { return nullptr; }
    int supportedCommunicationFlags() override { return 0; }
    void setDebugMode(bool /*on*/) override {}
    int getBlockAccessSize() override { return 0; }
    int getBitBlockAccessSize() override { return 0; }
    bool hasError() override { return false; }
    QString getLastError() override { return QString(); }
    QObject *getThisObject() override { return nullptr; }
};

// The least that a channel must have.
class BareChannel : public AbstractDeviceInterface
{
public:
    int readData(char * /*buffer*/, int /*maxLength*/) override { return 0; }
    int writeData(const char * /*data*/, int /*length*/) override { return 0; }
    bool open() override { return false; }
    void close() override {}
    DeviceSetting *deviceSetting() const override { return nullptr; }
    bool isConnected() const override { return false; }
    int retryCount() const override { return 0; }
    int stationId() const override { return 0; }
    unsigned int delayTime() const override { return 0; }
    QString errorString() const override { return QString(); }
};

} // namespace

TEST(Contract, PlacesOfTheChannelCountFromZero)
{
    EXPECT_EQ(slotOf(&AbstractDeviceInterface::readData), 2);
    EXPECT_EQ(slotOf(&AbstractDeviceInterface::writeData), 4);
    EXPECT_EQ(slotOf(&AbstractDeviceInterface::open), 5);
    EXPECT_EQ(slotOf(&AbstractDeviceInterface::close), 6);
    EXPECT_EQ(slotOf(&AbstractDeviceInterface::deviceSetting), 8);
    EXPECT_EQ(slotOf(&AbstractDeviceInterface::isConnected), 16);
    EXPECT_EQ(slotOf(&AbstractDeviceInterface::retryCount), 19);
    EXPECT_EQ(slotOf(&AbstractDeviceInterface::stationId), 20);
    EXPECT_EQ(slotOf(&AbstractDeviceInterface::delayTime), 22);
    EXPECT_EQ(slotOf(&AbstractDeviceInterface::errorString), 25);
}

// The two destructors come first, as 1 and 2.
TEST(Contract, PlacesOfTheDriverCountFromOne)
{
    EXPECT_EQ(slotOf(&DriverInterface::totalSize) + 1, 3);
    EXPECT_EQ(slotOf(&DriverInterface::write) + 1, 4);
    EXPECT_EQ(slotOf(&DriverInterface::read) + 1, 5);
    EXPECT_EQ(slotOf(&DriverInterface::initialize) + 1, 6);
    EXPECT_EQ(slotOf(&DriverInterface::validation) + 1, 7);
    EXPECT_EQ(slotOf(&DriverInterface::name) + 1, 8);
    EXPECT_EQ(slotOf(&DriverInterface::vender) + 1, 9);
    EXPECT_EQ(slotOf(&DriverInterface::getVersionNumber) + 1, 10);
    EXPECT_EQ(slotOf(&DriverInterface::getDefaultSerialDeviceSetting) + 1, 11);
    EXPECT_EQ(slotOf(&DriverInterface::getDefaultDriverSetting) + 1, 12);
    EXPECT_EQ(slotOf(&DriverInterface::getStringBasedDefaultDriverSetting) + 1, 13);
    EXPECT_EQ(slotOf(&DriverInterface::supportedCommunicationFlags) + 1, 14);
    EXPECT_EQ(slotOf(&DriverInterface::setDebugMode) + 1, 15);
    EXPECT_EQ(slotOf(&DriverInterface::getBlockAccessSize) + 1, 16);
    EXPECT_EQ(slotOf(&DriverInterface::getBitBlockAccessSize) + 1, 17);
    EXPECT_EQ(slotOf(&DriverInterface::hasError) + 1, 18);
    EXPECT_EQ(slotOf(&DriverInterface::getLastError) + 1, 19);
    EXPECT_EQ(slotOf(&DriverInterface::getThisObject) + 1, 20);
    EXPECT_EQ(slotOf(&DriverInterface::isSupportSessionCommand) + 1, 21);
    EXPECT_EQ(slotOf(&DriverInterface::setSessionCommand) + 1, 22);
    EXPECT_EQ(slotOf(&DriverInterface::clearSessionCommand) + 1, 23);
    EXPECT_EQ(slotOf(&DriverInterface::deviceSettingChanged) + 1, 24);
    EXPECT_EQ(slotOf(&DriverInterface::isConnected) + 1, 25);
}

TEST(Contract, DefaultsOfADriver)
{
    BareDriver bare;
    DriverInterface &driver = bare;
    EXPECT_EQ(driver.name(), QString(QLatin1String("Not Assigned")));
    EXPECT_EQ(driver.vender(), QString(QLatin1String("Not Assigned")));
    EXPECT_EQ(driver.getVersionNumber(), QString(QLatin1String("Not Assigned")));
    EXPECT_EQ(driver.getStringBasedDefaultDriverSetting(), QString(QLatin1String("RS232,9600,EVEN,7,1")));
    EXPECT_FALSE(driver.isSupportSessionCommand());
    driver.setSessionCommand(QList<CommunicatorCommand>());
    driver.clearSessionCommand();
    EXPECT_TRUE(driver.deviceSettingChanged(nullptr));
    EXPECT_TRUE(driver.isConnected(nullptr));
}

// A host need not override what the driver never calls, and may call it.
TEST(Contract, IdlePlacesOfTheChannelDoNothing)
{
    typedef AbstractDeviceInterface Channel;
    const struct {
        int place;
        void (Channel::*operation)();
    } idle[] = {{3, &Channel::slot3},   {7, &Channel::slot7},   {9, &Channel::slot9},
                {10, &Channel::slot10}, {11, &Channel::slot11}, {12, &Channel::slot12},
                {13, &Channel::slot13}, {14, &Channel::slot14}, {15, &Channel::slot15},
                {17, &Channel::slot17}, {18, &Channel::slot18}, {21, &Channel::slot21},
                {23, &Channel::slot23}, {24, &Channel::slot24}};
    BareChannel bare;
    Channel &channel = bare;
    for (const auto &i : idle) {
        EXPECT_EQ(slotOf(i.operation), i.place);
        (channel.*i.operation)();
    }
}

TEST(Contract, InterfaceIdentifier)
{
    EXPECT_STREQ(qobject_interface_iid<DriverInterface *>(), "com.brenwick.drivers.DriverInterface/1.1");
}

TEST(Contract, CommandsStartEmpty)
{
    const CommunicatorCommand command;
    EXPECT_EQ(command.dataType, 0);
    EXPECT_EQ(command.count, 0);
    EXPECT_TRUE(command.address.isNull());
}
