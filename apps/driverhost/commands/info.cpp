#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/console/link_options.h"
#include "apps/driverhost/console/messages.h"
#include "desk/output/table.h"
#include "desk/startup/plugin_file.h"
#include "drivers/device_setting.h"
#include "drivers/driver_setting.h"

#include <QFileInfo>
#include <QJsonDocument>

namespace
{

const CommandLine::Texts Texts = {
    "info",
    "",
    "Loads the plug-in and shows what it says about itself: identity, limits, default settings, entry points "
    "and\n"
    "build. Talks to no slave.",
    "  driverhost info --plugin ./libmodbus_rtu_slave_over_tcp.so",
};

QString yesOrNo(bool value)
{
    return value ? QStringLiteral("yes") : QStringLiteral("no");
}

QString numberText(int value)
{
    return QString::number(value);
}

void addIdentity(Table &table, const LoadedDriver &driver)
{
    table.addRow({QStringLiteral("name"), driver->name()});
    table.addRow({QStringLiteral("maker"), driver->vender()});
    table.addRow({QStringLiteral("version"), driver->getVersionNumber()});
    table.addRow(
        {QStringLiteral("class"), QLatin1String(driver->getThisObject()->metaObject()->className())});
}

void addLimits(Table &table, const LoadedDriver &driver)
{
    const int flags = driver->supportedCommunicationFlags();
    table.addRow({QStringLiteral("registers a request"), numberText(driver->getBlockAccessSize())});
    table.addRow({QStringLiteral("bits a request"), numberText(driver->getBitBlockAccessSize())});
    table.addRow({QStringLiteral("total size"), numberText(driver->totalSize())});
    table.addRow({QStringLiteral("communication flags"), QStringLiteral("0x") + QString::number(flags, 16)});
    table.addRow({QStringLiteral("session commands"), yesOrNo(driver->isSupportSessionCommand())});
}

void addDefaults(Table &table, const LoadedDriver &driver)
{
    const std::unique_ptr<DriverSetting> setting(driver->getDefaultDriverSetting());
    const std::unique_ptr<DeviceSetting> device(driver->getDefaultSerialDeviceSetting());
    table.addRow({QStringLiteral("default time-out"), QStringLiteral("%1 ms").arg(setting->timeout)});
    table.addRow({QStringLiteral("default retries"), numberText(setting->retry)});
    table.addRow({QStringLiteral("default station"), numberText(setting->stationId)});
    table.addRow({QStringLiteral("default delay"), QStringLiteral("%1 ms").arg(setting->delay)});
    table.addRow(
        {QStringLiteral("default device"),
         QStringLiteral("type %1, %2, %3 baud, %4 data bits, stop-bit code %5, parity code %6")
             .arg(numberText(device->type), device->deviceString, numberText(device->baudrate),
                  numberText(device->databits), numberText(device->stopbits), numberText(device->parity))});
    table.addRow({QStringLiteral("default text"), driver->getStringBasedDefaultDriverSetting()});
}

void addBuild(Table &table, const LoadedDriver &driver)
{
    const QJsonObject metaData = driver.metaData();
    const int version = metaData.value(QStringLiteral("version")).toInt();
    table.addRow({QStringLiteral("interface"), metaData.value(QStringLiteral("IID")).toString()});
    table.addRow({QStringLiteral("entry points"),
                  driver
                      .exported({QStringLiteral("CreateDriver"), QStringLiteral("qt_plugin_instance"),
                                 QStringLiteral("qt_plugin_query_verification_data")})
                      .join(QStringLiteral(", "))});
    table.addRow({QStringLiteral("verification text"),
                  driver.verificationText().replace(QLatin1Char('\n'), QLatin1String(", "))});
    table.addRow({QStringLiteral("built with"),
                  QStringLiteral("Qt %1.%2, %3")
                      .arg(numberText(version >> 16), numberText((version >> 8) & 0xFF),
                           metaData.value(QStringLiteral("debug")).toBool() ? QStringLiteral("debug")
                                                                            : QStringLiteral("release"))});
    table.addRow({QStringLiteral("file"), driver.path()});
    table.addRow(
        {QStringLiteral("file size"), QStringLiteral("%1 bytes").arg(QFileInfo(driver.path()).size())});
}

int showPlugin(const QString &path)
{
    const LoadedDriver driver(path);
    if (!driver.isLoaded()) {
        reportError(driver.errorString());
        return OtherFailure;
    }
    Table table({});
    addIdentity(table, driver);
    addLimits(table, driver);
    addDefaults(table, driver);
    addBuild(table, driver);
    return print(table.lines().mid(1)) ? Success : OutputClosed;
}

} // namespace

Job prepareInfo(const QStringList &arguments)
{
    CommandLine line(Texts);
    line.addOptions({pluginOption()});
    if (const std::optional<int> end = line.parse(arguments))
        return *end;
    if (!line.words().isEmpty())
        line.addError(QStringLiteral("info takes no arguments"));
    if (!line.isValid())
        return line.reportUsageError();

    const Result<QString> path = findPlugin(line.text("plugin"));
    if (!path) {
        reportError(path.errorText());
        return OtherFailure;
    }
    const Result<ChildEnd> end = runInChild([&] { return showPlugin(*path); });
    if (end)
        return codeOf(*end, *path);
    reportError(end.errorText());
    return OtherFailure;
}
