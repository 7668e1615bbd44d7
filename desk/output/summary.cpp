#include "desk/output/summary.h"

#include "desk/items/number_text.h"
#include "desk/wire/frame_text.h"

#include <QJsonDocument>

namespace
{

// Those of the things that happened.
QStringList happened(const LineCounts &counts)
{
    struct Count {
        quint64 number;
        const char *one;
        const char *more;
    };
    QStringList texts;
    const auto add = [&](quint64 number, const QString &one, const QString &more) {
        if (number > 0)
            texts += QStringLiteral("%1 %2").arg(QString::number(number), number == 1 ? one : more);
    };
    for (const Count &count : {Count{counts.withheld, "attempt not sent", "attempts not sent"},
                               Count{counts.timeouts, "time-out", "time-outs"},
                               Count{counts.cutReplies, "cut reply", "cut replies"},
                               Count{counts.crcErrors, "CRC error", "CRC errors"},
                               Count{counts.wrongReplies, "wrong reply", "wrong replies"}})
        add(count.number, QLatin1String(count.one), QLatin1String(count.more));
    for (const auto &[code, number] : counts.exceptions)
        add(number, QStringLiteral("exception ") + exceptionText(code),
            QStringLiteral("exceptions ") + exceptionText(code));
    for (const Count &count : {Count{counts.endsByOther, "connection closed by the other side",
                                     "connections closed by the other side"},
                               Count{counts.reconnects, "reconnect", "reconnects"},
                               Count{counts.failedOpenings, "connection refused or not answered",
                                     "connections refused or not answered"},
                               Count{counts.skippedBytes, "byte skipped", "bytes skipped"},
                               Count{counts.discardedBytes, "byte discarded", "bytes discarded"}})
        add(count.number, QLatin1String(count.one), QLatin1String(count.more));
    return texts;
}

QJsonValue numberValue(quint64 number)
{
    return static_cast<qint64>(number);
}

QJsonObject countsObject(const LineCounts &counts)
{
    QJsonObject exceptions;
    for (const auto &[code, number] : counts.exceptions)
        exceptions.insert(exceptionText(code), numberValue(number));
    return {{QStringLiteral("requests"), numberValue(counts.requests)},
            {QStringLiteral("attempts"), numberValue(counts.attempts)},
            {QStringLiteral("retries"), numberValue(counts.retries())},
            {QStringLiteral("not_sent"), numberValue(counts.withheld)},
            {QStringLiteral("timeouts"), numberValue(counts.timeouts)},
            {QStringLiteral("cut_replies"), numberValue(counts.cutReplies)},
            {QStringLiteral("crc_errors"), numberValue(counts.crcErrors)},
            {QStringLiteral("wrong_replies"), numberValue(counts.wrongReplies)},
            {QStringLiteral("exceptions"), exceptions},
            {QStringLiteral("failed_connections"), numberValue(counts.failedOpenings)},
            {QStringLiteral("reconnects"), numberValue(counts.reconnects)},
            {QStringLiteral("closed_by_other"), numberValue(counts.endsByOther)},
            {QStringLiteral("skipped_bytes"), numberValue(counts.skippedBytes)},
            {QStringLiteral("discarded_bytes"), numberValue(counts.discardedBytes)}};
}

} // namespace

QString countsText(const LineCounts &counts)
{
    const QString tried =
        QStringLiteral("%1, %2, %3")
            .arg(counted(static_cast<qint64>(counts.requests), "request"),
                 counted(static_cast<qint64>(counts.attempts), "attempt"),
                 QStringLiteral("%1 %2").arg(QString::number(counts.retries()),
                                             counts.retries() == 1 ? QStringLiteral("retry")
                                                                   : QStringLiteral("retries")));
    const QStringList texts = happened(counts);
    return texts.isEmpty() ? tried : tried + QStringLiteral("; ") + texts.join(QStringLiteral(", "));
}

QStringList countsLines(const LinkCounts &counts)
{
    QStringList lines{countsText(counts.total())};
    if (counts.stations().size() < 2)
        return lines;
    for (const auto &[station, stationCounts] : counts.stations())
        lines += QStringLiteral("  station %1: %2").arg(QString::number(station), countsText(stationCounts));
    return lines;
}

QString summaryLine(const LinkCounts &counts, const QJsonObject &more)
{
    QJsonObject summary = countsObject(counts.total());
    summary.insert(QStringLiteral("version"), OutputVersion);
    QJsonObject stations;
    for (const auto &[station, stationCounts] : counts.stations())
        stations.insert(QString::number(station), countsObject(stationCounts));
    summary.insert(QStringLiteral("stations"), stations);
    for (auto member = more.begin(); member != more.end(); ++member)
        summary.insert(member.key(), member.value());
    const QJsonObject object{{QStringLiteral("summary"), summary}};
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}
