#include "apps/driverdesk/models/traffic_entry.h"

#include "desk/wire/rtu_frame.h"

#include <QRegularExpression>

namespace
{

bool isGoodEvent(const QString &text)
{
    return text == QLatin1String("connected") || text == QLatin1String("closed") ||
           text.startsWith(QLatin1String("target "));
}

bool isBadFrame(QChar mark, const QByteArray &bytes)
{
    const bool isException = mark == QLatin1Char('<') && (functionOf(bytes) & modbus::ExceptionFlag) != 0;
    return mark == QLatin1Char('!') || isException || !hasGoodCrc(bytes);
}

} // namespace

int TrafficEntry::station() const
{
    return isFrame() ? byteAt(bytes, 0) : -1;
}

int TrafficEntry::function() const
{
    return isFrame() ? functionOf(bytes) & ~modbus::ExceptionFlag : -1;
}

TrafficEntry parseTraceLine(const QString &line)
{
    static const QRegularExpression frame(QStringLiteral("^(\\S+) ([<>!]) ((?:[0-9A-F]{2} ?)+) (?: (.*))?$"));
    static const QRegularExpression event(QStringLiteral("^(\\d\\S+) - (.*)$"));
    TrafficEntry entry;
    entry.line = line;
    const QRegularExpressionMatch ofFrame = frame.match(line);
    if (ofFrame.hasMatch()) {
        entry.mark = ofFrame.captured(2).front();
        entry.bytes = QByteArray::fromHex(ofFrame.captured(3).toLatin1());
        entry.meaning = ofFrame.captured(4);
        entry.time = ofFrame.captured(1);
        entry.isFailure = isBadFrame(entry.mark, entry.bytes);
    } else {
        const QRegularExpressionMatch ofEvent = event.match(line);
        entry.mark = QLatin1Char('-');
        entry.time = ofEvent.captured(1);
        entry.meaning = ofEvent.hasMatch() ? ofEvent.captured(2) : line;
        entry.isFailure = !isGoodEvent(entry.meaning);
    }
    // Without the offset from UTC, which is the same in every line.
    entry.time.truncate(int(QStringLiteral("00:00:00.000").size()));
    return entry;
}
