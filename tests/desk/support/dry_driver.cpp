#include "tests/desk/support/dry_driver.h"

#include "desk/link/loaded_driver.h"
#include "tests/peers/test_files.h"

namespace
{

CommunicatorCommand commandOf(ItemKind kind, const char *address, int count)
{
    CommunicatorCommand command;
    command.dataType = kind;
    command.count = count;
    command.address = QLatin1String(address);
    return command;
}

} // namespace

DryDriver::DryDriver(const QString &device, int station) : m_channel(station, device)
{
    static const LoadedDriver plugin(pluginFile());
    m_driver = plugin.createAnother();
}

QString DryDriver::read(ItemKind kind, const char *address, int count)
{
    m_driver->read(&m_channel, commandOf(kind, address, count));
    return text();
}

// The driver takes data of any length for a command of any count.
QString DryDriver::write(ItemKind kind, const char *address, int count)
{
    m_driver->write(&m_channel, commandOf(kind, address, count), QByteArray());
    return text();
}

QString DryDriver::text()
{
    return m_driver->hasError() ? m_driver->getLastError() : QString();
}
