#include "drivers/device_setting.h"
#include "drivers/driver_setting.h"
#include "drivers/qt/qt_lines.h"
#include "tests/support/driver_test.h"
#include "tests/support/random_data.h"

#include <QScopedPointer>
#include <QSqlDatabase>

extern "C" const char *qt_plugin_query_verification_data();

namespace
{

class DriverObject : public DriverTest
{
};

QString text(const char *latin1)
{
    return QLatin1String(latin1);
}

// What a driver draws first after this seed, which is set again.
QString firstNumberAfter(uint number)
{
    seedRandomNumbers(number);
    QString first = QString::number(nextRandomNumber());
    seedRandomNumbers(number);
    return first;
}

} // namespace

TEST_F(DriverObject, Identity)
{
    EXPECT_EQ(driver.name(), text("Modbus RTU Slave over TCP"));
    EXPECT_EQ(driver.vender(), text("Modbus"));
    EXPECT_EQ(driver.getVersionNumber(), text("1.0.0"));
}

TEST_F(DriverObject, Limits)
{
    EXPECT_EQ(driver.supportedCommunicationFlags(), 256);
    EXPECT_EQ(driver.getBlockAccessSize(), 125);
    EXPECT_EQ(driver.getBitBlockAccessSize(), 2008);
    EXPECT_EQ(driver.totalSize(), 278528);
}

TEST_F(DriverObject, InitializeDoesNothing)
{
    EXPECT_TRUE(driver.initialize(&channel));
    EXPECT_TRUE(driver.initialize(nullptr));
    EXPECT_TRUE(channel.calls().empty());
}

TEST_F(DriverObject, ValidationRefusesEveryText)
{
    EXPECT_FALSE(driver.validation(text("HR1")));
    EXPECT_FALSE(driver.validation(text("FN5DO12")));
    EXPECT_FALSE(driver.validation(QString()));
}

TEST_F(DriverObject, KeepsTheDefaultsOfSessionsAndSettings)
{
    EXPECT_FALSE(driver.isSupportSessionCommand());
    EXPECT_TRUE(driver.deviceSettingChanged(nullptr));
}

TEST_F(DriverObject, DefaultDeviceSetting)
{
    const QScopedPointer<DeviceSetting> setting(driver.getDefaultSerialDeviceSetting());
    EXPECT_EQ(static_cast<int>(setting->type), 16);
    EXPECT_EQ(setting->deviceString, text("COM2"));
    EXPECT_EQ(setting->baudrate, 9600);
    EXPECT_EQ(setting->databits, 8);
    EXPECT_EQ(setting->stopbits, 0);
    EXPECT_EQ(setting->parity, 2);
}

TEST_F(DriverObject, DefaultDriverSetting)
{
    const QScopedPointer<DriverSetting> setting(driver.getDefaultDriverSetting());
    EXPECT_EQ(setting->timeout, 3000);
    EXPECT_EQ(setting->retry, 3);
    EXPECT_EQ(setting->stationId, 1);
    EXPECT_EQ(setting->delay, 0);
    EXPECT_EQ(driver.getStringBasedDefaultDriverSetting(), text("23"));
}

TEST_F(DriverObject, IsConnectedAsksTheChannel)
{
    EXPECT_TRUE(driver.isConnected(&channel));
    channel.connected = false;
    EXPECT_FALSE(driver.isConnected(&channel));
    EXPECT_EQ(channel.trace(), "isConnected isConnected");
}

TEST_F(DriverObject, ErrorTextOutlivesItsFlag)
{
    EXPECT_TRUE(read(WordItem, "HR1", 1).isEmpty());
    const QString failure = driver.getLastError();
    EXPECT_TRUE(driver.hasError());
    channel.connected = true;
    channel.addReply(framed("01 03 02 12 34"));
    EXPECT_EQ(read(WordItem, "HR1", 1), fromHex("34 12"));
    EXPECT_FALSE(driver.hasError());
    EXPECT_EQ(driver.getLastError(), failure);
    EXPECT_FALSE(failure.isEmpty());
}

TEST_F(DriverObject, DebugModeChangesNothing)
{
    driver.setDebugMode(true);
    channel.addReply(framed("01 03 02 12 34"));
    EXPECT_EQ(read(WordItem, "HR1", 1), fromHex("34 12"));
    EXPECT_EQ(channel.trace(), "delayTime isConnected write(01 03 00 00 00 01 84 0a) read(5) read(2)");
}

TEST(FreshDriverObject, HasNoErrorAndOpensNothing)
{
    const QStringList before = QSqlDatabase::connectionNames();
    DriverModbusRtuSlaveOverTcp driver;
    EXPECT_FALSE(driver.hasError());
    EXPECT_EQ(driver.getLastError(), QString());
    EXPECT_EQ(driver.parent(), nullptr);
    EXPECT_EQ(QSqlDatabase::connectionNames(), before);
}

TEST_F(DriverObject, MetaObject)
{
    const QMetaObject *const meta = driver.metaObject();
    EXPECT_STREQ(meta->className(), "DriverModbusRtuSlaveOverTcp");
    EXPECT_EQ(meta->superClass(), &QObject::staticMetaObject);
    EXPECT_EQ(meta->methodCount(), QObject::staticMetaObject.methodCount());
    EXPECT_EQ(meta->propertyCount(), QObject::staticMetaObject.propertyCount());
}

TEST_F(DriverObject, MetaCasts)
{
    DriverInterface *const base = &driver;
    EXPECT_EQ(driver.qt_metacast("DriverModbusRtuSlaveOverTcp"), static_cast<void *>(&driver));
    EXPECT_EQ(driver.qt_metacast("DriverInterface"), static_cast<void *>(base));
    EXPECT_EQ(driver.qt_metacast("com.brenwick.drivers.DriverInterface/1.1"), static_cast<void *>(base));
    EXPECT_EQ(driver.qt_metacast("QObject"), static_cast<void *>(static_cast<QObject *>(&driver)));
    EXPECT_EQ(driver.qt_metacast("com.brenwick.drivers.DriverInterface/1.0"), nullptr);
    EXPECT_EQ(driver.qt_metacast("QTimer"), nullptr);
    EXPECT_EQ(driver.qt_metacast(nullptr), nullptr);
    EXPECT_EQ(driver.getThisObject(), static_cast<QObject *>(&driver));
    EXPECT_EQ(qobject_cast<DriverInterface *>(driver.getThisObject()), base);
}

// The object comes first, the interface second: a pointer to the driver is a pointer to its QObject.
TEST_F(DriverObject, ObjectComesFirst)
{
    EXPECT_EQ(static_cast<void *>(static_cast<QObject *>(&driver)), static_cast<void *>(&driver));
    EXPECT_NE(static_cast<void *>(static_cast<DriverInterface *>(&driver)), static_cast<void *>(&driver));
}

TEST(PluginEntry, EachCreateDriverMakesAnObject)
{
    const QScopedPointer<DriverInterface> first(CreateDriver());
    const QScopedPointer<DriverInterface> second(CreateDriver());
    EXPECT_NE(first.data(), second.data());
    EXPECT_EQ(first->name(), text("Modbus RTU Slave over TCP"));
    EXPECT_EQ(qobject_cast<DriverInterface *>(first->getThisObject()), first.data());
}

// The rest of the text names the build of Qt that loads the plug-in.
TEST(PluginEntry, VerificationText)
{
    const QByteArray start("pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=4.8.6\ndebug=");
    EXPECT_EQ(QByteArray(qt_plugin_query_verification_data()).left(start.size()), start);
}

TEST(ConnectionName, IsOneRandomNumberDrawnAtConstruction)
{
    if (!CanSeedRandomNumbers)
        GTEST_SKIP() << "this Qt has random numbers that nobody can foresee";
    const ProjectDatabase project(QStringList(), 1);
    const QString expected = firstNumberAfter(20091);
    QSqlDatabase::removeDatabase(expected);
    DriverModbusRtuSlaveOverTcp driver;
    nextRandomNumber();
    ScriptedChannel channel;
    driver.read(&channel, makeCommand(EightByteItem, QString(), 0));
    EXPECT_TRUE(QSqlDatabase::contains(expected));
}

TEST(ConnectionName, DiffersBetweenObjects)
{
    const ProjectDatabase project(QStringList(), 1);
    const int before = sizeOf(QSqlDatabase::connectionNames());
    DriverModbusRtuSlaveOverTcp first;
    DriverModbusRtuSlaveOverTcp second;
    ScriptedChannel channel;
    first.read(&channel, makeCommand(EightByteItem, QString(), 0));
    second.read(&channel, makeCommand(EightByteItem, QString(), 0));
    EXPECT_EQ(QSqlDatabase::connectionNames().size(), before + 2);
}

// Threads that never call qsrand() all draw the same numbers. Two such drivers share a connection; each loads
// its project none the less.
TEST(ConnectionName, SharedByObjectsThatDrewTheSameNumber)
{
    if (!CanSeedRandomNumbers)
        GTEST_SKIP() << "this Qt has random numbers that nobody can foresee";
    const ProjectDatabase project(QStringList(), 1);
    const QString expected = firstNumberAfter(20092);
    DriverModbusRtuSlaveOverTcp first;
    seedRandomNumbers(20092);
    DriverModbusRtuSlaveOverTcp second;
    ScriptedChannel channel;
    const int before = sizeOf(QSqlDatabase::connectionNames());
    first.read(&channel, makeCommand(EightByteItem, text("A"), 0));
    second.read(&channel, makeCommand(EightByteItem, text("B"), 0));
    EXPECT_EQ(QSqlDatabase::connectionNames().size(), before + 1);
    EXPECT_TRUE(QSqlDatabase::contains(expected));
    EXPECT_EQ(first.getLastError(), text("unsupported data type: A"));
    EXPECT_EQ(second.getLastError(), text("unsupported data type: B"));
}
