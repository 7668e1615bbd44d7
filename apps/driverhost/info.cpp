#include "commands.h"

#include "drivers/device_setting.h"
#include "drivers/driver_setting.h"
#include "exit_codes.h"
#include "link_options.h"
#include "loaded_driver.h"
#include "messages.h"
#include "table.h"
#include "value_output.h"

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
    const int hexadecimal = 16;
    const int flags = driver->supportedCommunicationFlags();
    table.addRow({QStringLiteral("registers a request"), numberText(driver->getBlockAccessSize())});
    table.addRow({QStringLiteral("bits a request"), numberText(driver->getBitBlockAccessSize())});
    table.addRow({QStringLiteral("total size"), numberText(driver->totalSize())});
    table.addRow(
        {QStringLiteral("communication flags"), QStringLiteral("0x") + QString::number(flags, hexadecimal)});
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
    const int byteWidth = 8;
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
                      .arg(numberText(version >> (2 * byteWidth)), numberText((version >> byteWidth) & 0xFF),
                           metaData.value(QStringLiteral("debug")).toBool() ? QStringLiteral("debug")
                                                                            : QStringLiteral("release"))});
    table.addRow({QStringLiteral("file"), driver.path()});
    table.addRow(
        {QStringLiteral("file size"), QStringLiteral("%1 bytes").arg(QFileInfo(driver.path()).size())});
}

} // namespace

int runInfo(const QStringList &arguments)
{
    CommandLine line(Texts);
    line.addOptions({pluginOption()});
    if (const std::optional<int> end = line.parse(arguments))
        return *end;
    if (!line.words().isEmpty())
        line.mistake(QStringLiteral("info takes no arguments"));
    if (!line.isRight())
        return line.refuse();

    QString error;
    const QString path = findPlugin(line.text("plugin"), error);
    if (path.isEmpty()) {
        complain(error);
        return OtherFailure;
    }
    const LoadedDriver driver(path);
    if (!driver.isLoaded()) {
        complain(driver.errorString());
        return OtherFailure;
    }
    Table table({});
    addIdentity(table, driver);
    addLimits(table, driver);
    addDefaults(table, driver);
    addBuild(table, driver);
    return print(table.lines().mid(1)) ? Success : OutputClosed;
}
