#include "desk/slave/slave_memory.h"

#include "desk/readable_file.h"

#include <QRegularExpression>
#include <QTextStream>

#include <algorithm>

namespace
{

// A register takes -32768 to 65535, in any base that C has.
bool parseValue(const QString &text, Area area, quint16 &value)
{
    bool ok = false;
    const int number = text.toInt(&ok, 0);
    const int min = isBitArea(area) ? 0 : -0x8000;
    const int max = isBitArea(area) ? 1 : 0xFFFF;
    value = static_cast<quint16>(number & 0xFFFF);
    return ok && number >= min && number <= max;
}

} // namespace

void SlaveMemory::setValue(int station, Area area, quint16 offset, quint16 value)
{
    m_values.append(Value{station, area, offset, value});
}

void SlaveMemory::addHole(const AreaRange &range)
{
    m_holes.append(range);
}

bool SlaveMemory::isHole(int station, Area area, int first, int last) const
{
    return std::any_of(m_holes.begin(), m_holes.end(), [=](const AreaRange &hole) {
        return (hole.station == 0 || hole.station == station) && hole.area == area && hole.first <= last &&
               hole.last >= first;
    });
}

Result<> SlaveMemory::loadFile(const QString &path)
{
    const Result<QByteArray> contents = contentsOf(path);
    if (!contents)
        return contents.error();
    QTextStream stream(*contents);
    for (int number = 1; !stream.atEnd(); ++number) {
        const QString line = stream.readLine().section(QLatin1Char('#'), 0, 0).trimmed();
        const Result<> loaded = line.isEmpty() ? Result<>() : loadLine(line);
        if (!loaded)
            return Error{QStringLiteral("%1:%2: %3").arg(path, QString::number(number), loaded.errorText())};
    }
    return {};
}

Result<> SlaveMemory::loadLine(const QString &line)
{
    if (line.startsWith(QLatin1String("hole "))) {
        const QString text = line.mid(5).trimmed();
        const Result<AreaRange> hole = parseAreaRange(text);
        if (!hole)
            return Error{QStringLiteral("\"%1\" is no range of addresses").arg(text)};
        addHole(*hole);
        return {};
    }

    const QString address = line.section(QLatin1Char('='), 0, 0).trimmed();
    const Result<AreaRange> range = parseAreaRange(address);
    if (!range)
        return Error{QStringLiteral("\"%1\" is no address").arg(address)};
    const QStringList words = line.section(QLatin1Char('='), 1)
                                  .split(QRegularExpression(QStringLiteral("[\\s,]+")), Qt::SkipEmptyParts);
    if (words.isEmpty())
        return Error{QStringLiteral("no value")};
    const int size = range->last - range->first + 1;
    if (size > 1 && size != words.size())
        return Error{QStringLiteral("\"%1\" are %2 addresses; expected as many values, and not %3")
                         .arg(address, QString::number(size), QString::number(words.size()))};
    if (range->first + words.size() > modbus::AddressSpace)
        return Error{QStringLiteral("values beyond address 65536")};
    int offset = range->first;
    for (const QString &word : words) {
        quint16 value = 0;
        if (!parseValue(word, range->area, value))
            return Error{QStringLiteral("\"%1\" is no value for %2").arg(word, areaName(range->area))};
        setValue(range->station, range->area, static_cast<quint16>(offset++), value);
    }
    return {};
}
