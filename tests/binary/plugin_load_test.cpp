#include "host/driver_interface.h"
#include "tests/binary/verification_text.h"
#include "tests/doubles/command.h"
#include "tests/doubles/frames.h"
#include "tests/doubles/scripted_channel.h"
#include "tests/support/gtest_qt.h"
#include "tests/support/project_database.h"

#include <QCoreApplication>
#include <QLibrary>
#include <QPluginLoader>
#include <QPointer>

#include <memory>

// The plug-in file as a host meets it: through Qt's loader and its entry points. This program has none of the
// driver's code in it. The file's path is in PLUGIN_FILE.

namespace
{

QString pluginFile()
{
    return QString::fromLocal8Bit(qgetenv("PLUGIN_FILE"));
}

template <typename Function>
Function entryPoint(const char *name)
{
    const auto address = QLibrary::resolve(pluginFile(), name);
    EXPECT_NE(address, nullptr) << name;
    return reinterpret_cast<Function>(address);
}

} // namespace

TEST(PluginLoad, QtLoadsItAsADriver)
{
    QPluginLoader loader(pluginFile());
    QObject *object = loader.instance();
    ASSERT_NE(object, nullptr) << loader.errorString().toStdString();
    EXPECT_STREQ(object->metaObject()->className(), "DriverModbusRtuSlaveOverTcp");
    DriverInterface *driver = qobject_cast<DriverInterface *>(object);
    ASSERT_NE(driver, nullptr);
    EXPECT_EQ(driver->name(), QString(QLatin1String("Modbus RTU Slave over TCP")));
    EXPECT_EQ(driver->getThisObject(), object);
}

TEST(PluginLoad, OneInstanceUntilItIsDeleted)
{
    typedef QObject *(*Instance)();
    const auto instance = entryPoint<Instance>("qt_plugin_instance");
    ASSERT_NE(instance, nullptr);
    QPointer<QObject> first = instance();
    ASSERT_FALSE(first.isNull());
    EXPECT_EQ(instance(), first.data());
    delete first.data();
    QObject *second = instance();
    ASSERT_NE(second, nullptr);
    EXPECT_NE(qobject_cast<DriverInterface *>(second), nullptr);
}

TEST(PluginLoad, CreateDriverMakesANewDriverEachTime)
{
    typedef DriverInterface *(*Create)();
    const auto create = entryPoint<Create>("CreateDriver");
    ASSERT_NE(create, nullptr);
    const std::unique_ptr<DriverInterface> first(create());
    const std::unique_ptr<DriverInterface> second(create());
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first, second);
    EXPECT_EQ(second->getVersionNumber(), QString(QLatin1String("1.0.0")));
}

TEST(PluginLoad, VerificationText)
{
    typedef const char *(*Query)();
    const auto query = entryPoint<Query>("qt_plugin_query_verification_data");
    ASSERT_NE(query, nullptr);
    EXPECT_EQ(QByteArray(query()), expectedVerificationText());
}

TEST(PluginLoad, ReadsThroughAChannelOfTheHost)
{
    typedef DriverInterface *(*Create)();
    const auto create = entryPoint<Create>("CreateDriver");
    ASSERT_NE(create, nullptr);
    const std::unique_ptr<DriverInterface> driver(create());
    const ProjectDatabase database(QStringList(), 1);
    ScriptedChannel channel;
    channel.addReply(framed("01 03 04 12 34 56 78"));
    EXPECT_EQ(driver->read(&channel, makeCommand(WordItem, QLatin1String("HR1"), 2)), fromHex("34 12 78 56"));
    EXPECT_FALSE(driver->hasError()) << driver->getLastError().toStdString();
}
