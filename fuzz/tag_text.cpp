// Tag texts of a project: which bits of which station it uses. A slave whose bits are all set answers, so
// that a read of the whole area shows exactly the used ones.

#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"
#include "fuzz/support/check.h"
#include "fuzz/support/project_file.h"
#include "fuzz/support/slave_channel.h"
#include "tests/doubles/command.h"

#include <QMap>

using namespace fuzz;

namespace
{

const int AreaBytes = 8192;
const int MaxTags = 40;

struct UsedArea {
    QByteArray inputs = QByteArray(AreaBytes, '\0');
    QByteArray coils = QByteArray(AreaBytes, '\0');
};

using Project = QMap<int, UsedArea>;

void use(QByteArray &area, quint32 number)
{
    const int address = static_cast<quint16>(number - 1);
    area[address / 8] = static_cast<char>(area.at(address / 8) | 1 << address % 8);
}

bool startsWith(const QString &text, const char *prefix)
{
    return text.startsWith(QLatin1String(prefix), Qt::CaseInsensitive);
}

quint32 numberIn(const QString &text)
{
    const QByteArray bytes = text.toLatin1();
    int i = 0;
    while (i < bytes.size() && (bytes.at(i) < '0' || bytes.at(i) > '9'))
        ++i;
    return static_cast<quint32>(bytes.mid(i).toInt());
}

// Digits of any script, of which only the ten of ASCII make a number.
QString takeDigits(const QString &text, int &i)
{
    const int start = i;
    while (i < text.size() && text.at(i).isDigit())
        ++i;
    return text.mid(start, i - start);
}

// "2-DO5" and the like.
void useWithStation(const QString &tag, Project &project)
{
    int i = 0;
    const QString station = takeDigits(tag, i);
    if (station.isEmpty() || tag.mid(i, 1) != QLatin1String("-"))
        return;
    const QString rest = tag.mid(i + 1);
    const bool isInput = startsWith(rest, "DI");
    int digits = startsWith(rest, "FN5DO") ? 5 : isInput || startsWith(rest, "DO") ? 2 : rest.size();
    const QString number = takeDigits(rest, digits);
    if (number.isEmpty())
        return;
    UsedArea &area = project[static_cast<quint8>(station.toUInt())];
    use(isInput ? area.inputs : area.coils, number.toUInt());
}

void useTag(const QString &tag, Project &project)
{
    if (startsWith(tag, "FN5DO"))
        use(project[ProjectStation].coils, numberIn(tag.mid(3)));
    else if (startsWith(tag, "DI"))
        use(project[ProjectStation].inputs, numberIn(tag));
    else if (startsWith(tag, "DO"))
        use(project[ProjectStation].coils, numberIn(tag));
    else
        useWithStation(tag, project);
}

QStringList tagsIn(const std::uint8_t *data, std::size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<int>(size));
    return QString::fromUtf8(bytes.replace('\0', ' ')).split(QLatin1Char('\n')).mid(0, MaxTags);
}

QByteArray readArea(DriverModbusRtuSlaveOverTcp &driver, const char *address, int station)
{
    SlaveChannel channel;
    channel.station = station;
    channel.data = [](const QByteArray &) { return QByteArray(256, '\xFF'); };
    return driver.read(&channel, makeCommand(ByteItem, QLatin1String(address), AreaBytes));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const bool hasProject = (writeProject({}), true);
    FUZZ_CHECK(hasProject);
    const QStringList tags = tagsIn(data, size);
    replaceTags(tags);
    Project project;
    for (const QString &tag : tags)
        useTag(tag, project);

    {
        DriverModbusRtuSlaveOverTcp driver;
        for (auto station = project.cbegin(); station != project.cend(); ++station) {
            FUZZ_CHECK(readArea(driver, "DI1", station.key()) == station->inputs && !driver.hasError());
            FUZZ_CHECK(readArea(driver, "DO1", station.key()) == station->coils && !driver.hasError());
        }
        int unused = 0;
        while (project.contains(unused))
            ++unused;
        FUZZ_CHECK(readArea(driver, "DI1", unused).isEmpty() && driver.hasError());
    }
    forgetDriverConnections();
    return 0;
}
