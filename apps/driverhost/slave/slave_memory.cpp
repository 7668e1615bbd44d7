#include "slave/slave_memory.h"

#include <QFile>
#include <QRegularExpression>
#include <QTextStream>

#include <algorithm>

namespace
{

bool isBitArea(SlaveArea area)
{
    return area == SlaveArea::Coils || area == SlaveArea::DiscreteInputs;
}

// A register takes -32768 to 65535, in any base that C has.
bool parseValue(const QString &text, SlaveArea area, quint16 &value)
{
    bool ok = false;
    const int number = text.toInt(&ok, 0);
    const int smallest = isBitArea(area) ? 0 : -0x8000;
    const int largest = isBitArea(area) ? 1 : 0xFFFF;
    value = static_cast<quint16>(number & 0xFFFF);
    return ok && number >= smallest && number <= largest;
}

} // namespace

void SlaveMemory::setValue(int station, SlaveArea area, quint16 offset, quint16 value)
{
    initialValues.append(Value{station, area, offset, value});
}

void SlaveMemory::addHole(const AreaRange &range)
{
    holes.append(range);
}

bool SlaveMemory::isHole(int station, SlaveArea area, int first, int last) const
{
    return std::any_of(holes.begin(), holes.end(), [=](const AreaRange &hole) {
        return (hole.station == 0 || hole.station == station) && hole.area == area && hole.first <= last &&
               hole.last >= first;
    });
}

bool SlaveMemory::loadFile(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        *error = QStringLiteral("%1: %2").arg(path, file.errorString());
        return false;
    }
    QTextStream stream(&file);
    for (int number = 1; !stream.atEnd(); ++number) {
        const QString line = stream.readLine().section(QLatin1Char('#'), 0, 0).trimmed();
        QString reason;
        if (!line.isEmpty() && !loadLine(line, &reason)) {
            *error = QStringLiteral("%1:%2: %3").arg(path).arg(number).arg(reason);
            return false;
        }
    }
    return true;
}

bool SlaveMemory::loadLine(const QString &line, QString *error)
{
    AreaRange range;
    if (line.startsWith(QLatin1String("hole "))) {
        if (!parseAreaRange(line.mid(5).trimmed(), range)) {
            *error = QStringLiteral("\"%1\" is no range of addresses").arg(line.mid(5).trimmed());
            return false;
        }
        addHole(range);
        return true;
    }

    const QString address = line.section(QLatin1Char('='), 0, 0).trimmed();
    if (!parseAreaRange(address, range) || range.first != range.last) {
        *error = QStringLiteral("\"%1\" is no address").arg(address);
        return false;
    }
    const QStringList words = line.section(QLatin1Char('='), 1)
                                  .split(QRegularExpression(QStringLiteral("[\\s,]+")), Qt::SkipEmptyParts);
    if (words.isEmpty() || range.first + words.size() > 0x10000) {
        *error = words.isEmpty() ? QStringLiteral("no value") : QStringLiteral("values beyond address 65536");
        return false;
    }
    int offset = range.first;
    for (const QString &word : words) {
        quint16 value = 0;
        if (!parseValue(word, range.area, value)) {
            *error = QStringLiteral("\"%1\" is no value for %2").arg(word, areaName(range.area));
            return false;
        }
        setValue(range.station, range.area, static_cast<quint16>(offset++), value);
    }
    return true;
}
