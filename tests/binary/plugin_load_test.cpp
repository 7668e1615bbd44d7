#include "host/driver_interface.h"
#include "tests/binary/verification_text.h"
#include "tests/support/gtest_qt.h"

#include <QLibrary>
#include <QObject>
#include <QPluginLoader>

// What the plug-in file says it is, through Qt's loader and its entry points; what any plug-in of the family
// has to do there, the kit checks. This program has none of the driver's code in it. The file's path is in
// PLUGIN_FILE.

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

TEST(PluginLoad, VerificationText)
{
    typedef const char *(*Query)();
    const auto query = entryPoint<Query>("qt_plugin_query_verification_data");
    ASSERT_NE(query, nullptr);
    EXPECT_EQ(QByteArray(query()), expectedVerificationText());
}
