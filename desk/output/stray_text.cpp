#include "desk/output/stray_text.h"

#include "desk/channel/line_channel.h"
#include "desk/items/number_text.h"

namespace
{

QString countedText(quint64 number, const char *thing)
{
    return counted(static_cast<qint64>(number), thing);
}

QString millisecondsText(qint64 microseconds)
{
    return QString::number(static_cast<double>(microseconds) / 1000, 'f', 1) + QStringLiteral(" ms");
}

void addSettling(QStringList &lines, const SettleCounts &counts)
{
    const quint64 times = counts.byEcho + counts.byQuiet;
    if (times == 0 && counts.withheld == 0)
        return;
    QString line = QStringLiteral("the line was settled %1 by the echo of function 8 and %2 by a quiet time")
                       .arg(countedText(counts.byEcho, "time"), countedText(counts.byQuiet, "time"));
    if (times > 0)
        line += QStringLiteral(", after %1 on average and %2 at most")
                    .arg(millisecondsText(counts.totalTime / static_cast<qint64>(times)),
                         millisecondsText(counts.longestTime));
    if (counts.withheld > 0)
        line += QStringLiteral("; %1 not sent meanwhile").arg(countedText(counts.withheld, "attempt"));
    lines += line;
}

} // namespace

QStringList strayLines(const LineChannel &channel)
{
    const StrayCounts &strays = channel.strays();
    QStringList lines;
    if (strays.noiseBytes > 0)
        lines += QStringLiteral("%1 in front of replies and between them belong to no frame: registration or "
                                "heartbeat packets of the gateway, or noise on the line")
                     .arg(countedText(strays.noiseBytes, "byte"));
    if (strays.otherFrames > 0)
        lines +=
            QStringLiteral("%1 of stations that were not asked here, the last of station %2: another master "
                           "is on the line")
                .arg(countedText(strays.otherFrames, "frame"), QString::number(strays.lastOtherStation));
    if (strays.lateFrames > 0)
        lines += QStringLiteral("%1 came too late or twice: the time-out is too short for this line")
                     .arg(countedText(strays.lateFrames, "frame"));
    if (strays.requestCopies > 0)
        lines += QStringLiteral("the line echoed %1: switch that off in the gateway or the two-wire adapter")
                     .arg(countedText(strays.requestCopies, "request"));
    if (strays.idleEnds > 0)
        lines +=
            QStringLiteral("%1 ended by the other side while nothing was asked: the gateway's time for idle "
                           "connections")
                .arg(countedText(strays.idleEnds, "connection"));
    if (strays.deafEnds > 0)
        lines += QStringLiteral("%1 ended by the other side before anything was answered: the gateway's only "
                                "slot, or its limit of connections, is taken")
                     .arg(countedText(strays.deafEnds, "connection"));
    addSettling(lines, channel.settling().counts());
    return lines;
}
