#include "tests/peers/driver_link.h"

#include "desk/project/project_file.h"
#include "drivers/tools.h"
#include "tests/peers/test_files.h"
#include "tests/peers/text_printing.h"

#include <QDir>
#include <QFileInfo>

#include <stdexcept>

namespace
{

const int EthernetPort = 2000;

CommunicatorCommand commandOf(int dataType, int count, const QString &address)
{
    CommunicatorCommand command;
    command.dataType = dataType;
    command.count = count;
    command.address = address;
    return command;
}

} // namespace

ChannelSettings channelTo(quint16 port, int timeoutMs)
{
    ChannelSettings settings;
    settings.host = QStringLiteral("127.0.0.1");
    settings.port = port;
    settings.timeout = timeoutMs;
    settings.connectTimeout = 5000;
    settings.retries = 0;
    settings.settle.mode = SettleMode::Off;
    return settings;
}

bool layProjectBesideProgram(const QStringList &tags)
{
    Project project;
    project.links.append({1, EthernetPort});
    project.nodes.append({1, 1, true, QString(), 0});
    for (const QString &tag : tags)
        project.tags.append({1, tag});
    const QString path = GetDatabaseName();
    return QDir().mkpath(QFileInfo(path).path()) && writeProjectFile(path, project).isGood();
}

DriverLink::DriverLink(const ChannelSettings &settings) : tcp(settings), plugin(pluginFile())
{
    if (plugin.isLoaded())
        driver = plugin.createAnother();
    if (driver == nullptr)
        throw std::runtime_error("cannot load " + pluginFile().toStdString());
}

QByteArray DriverLink::read(int dataType, int count, const QString &address)
{
    return driver->read(&tcp, commandOf(dataType, count, address));
}

bool DriverLink::write(int dataType, int count, const QString &address, const QByteArray &data)
{
    return driver->write(&tcp, commandOf(dataType, count, address), data);
}

std::vector<int> DriverLink::readWords(const QString &address, int count)
{
    const QByteArray data = read(Words, count, address);
    std::vector<int> words;
    for (int i = 0; i + 1 < data.size(); i += 2)
        words.push_back(static_cast<quint8>(data.at(i)) | static_cast<quint8>(data.at(i + 1)) << 8);
    return words;
}

bool DriverLink::writeWords(const QString &address, const std::vector<int> &values)
{
    QByteArray data;
    for (const int value : values) {
        data.append(static_cast<char>(value & 0xFF));
        data.append(static_cast<char>(value >> 8));
    }
    return write(Words, static_cast<int>(values.size()), address, data);
}

QString DriverLink::error()
{
    return driver->hasError() ? driver->getLastError().section(QStringLiteral(" ("), 0, 0) : QString();
}
