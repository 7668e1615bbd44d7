#include "tests/support/driver_test.h"

QStringList stringList(std::initializer_list<const char *> texts)
{
    QStringList list;
    for (const char *text : texts)
        list << QLatin1String(text);
    return list;
}

std::string repeated(const std::string &attempt, int times)
{
    std::string all;
    for (int i = 0; i < times; ++i)
        all += (i > 0 ? " " : "") + attempt;
    return all;
}

QList<QByteArray> frames(std::initializer_list<const char *> hexTexts)
{
    QList<QByteArray> list;
    for (const char *text : hexTexts)
        list << framed(text);
    return list;
}

std::string errorOf(DriverInterface &driver)
{
    return driver.hasError() ? std::string(driver.getLastError().toUtf8().constData()) : NoError;
}

LoadedDriver::LoadedDriver(const QStringList &tags)
{
    const ProjectDatabase project(tags, 1);
    const CommunicatorCommand unsupported = makeCommand(EightByteItem, QString(), 0);
    driver.read(&channel, unsupported);
    channel.forgetCalls();
}

QByteArray LoadedDriver::read(int dataType, const char *address, int count)
{
    return driver.read(&channel, makeCommand(dataType, QString::fromUtf8(address), count));
}

bool LoadedDriver::write(int dataType, const char *address, int count, const QByteArray &data)
{
    return driver.write(&channel, makeCommand(dataType, QString::fromUtf8(address), count), data);
}

QByteArray patternBytes(int size)
{
    QByteArray bytes(size, '\0');
    for (int i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i * 37 + 11);
    return bytes;
}
