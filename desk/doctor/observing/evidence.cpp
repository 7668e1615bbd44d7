#include "desk/doctor/observing/evidence.h"

#include "desk/wire/frame_text.h"
#include "desk/wire/rtu_frame.h"

#include <algorithm>

namespace
{

const double MicrosecondsPerSecond = 1e6;
const double MicrosecondsPerMillisecond = 1e3;

QString timeText(qint64 at)
{
    return QStringLiteral("%1 s").arg(static_cast<double>(at) / MicrosecondsPerSecond, 7, 'f', 3);
}

bool isReadable(const QByteArray &bytes)
{
    const int fewest = 3;
    return bytes.size() >= fewest && std::all_of(bytes.begin(), bytes.end(), [](char letter) {
               return (letter >= ' ' && letter <= '~') || letter == '\r' || letter == '\n';
           });
}

QString lettersOf(const QByteArray &bytes)
{
    const int most = 32;
    QString text = QString::fromLatin1(bytes.left(most));
    text.replace(QLatin1Char('\r'), QLatin1String("\\r")).replace(QLatin1Char('\n'), QLatin1String("\\n"));
    return bytes.size() <= most ? text : text + QStringLiteral("...");
}

QString bytesText(const QByteArray &bytes)
{
    const int mostOfText = 6;
    const bool isText = isReadable(bytes);
    const int most = isText ? mostOfText : 14;
    const QString text = QString::fromLatin1(bytes.left(most).toHex(' ').toUpper());
    if (isText)
        return QStringLiteral("%1%2 \"%3\"")
            .arg(text, bytes.size() <= most ? QString() : QStringLiteral(" ..."), lettersOf(bytes));
    return bytes.size() <= most ? text : QStringLiteral("%1 ... (%2 bytes)").arg(text).arg(bytes.size());
}

QString outcomeText(const Asked &asked)
{
    const qint64 end = asked.sentAt + asked.wait;
    switch (asked.result) {
    case AskResult::Silent:
        return eventText(end, QStringLiteral("nothing came within %1").arg(durationText(asked.wait)));
    case AskResult::Ended: return eventText(asked.sentAt, QStringLiteral("the connection ended"));
    case AskResult::Unsent: return eventText(asked.sentAt, QStringLiteral("not sent, no connection"));
    case AskResult::Refused:
        return QStringLiteral("    exception %1 (%2) after %3")
            .arg(QString::number(asked.exception()), exceptionName(asked.exception()),
                 durationText(asked.latency()));
    case AskResult::Answered:
    case AskResult::OtherLength: return QStringLiteral("    after %1").arg(durationText(asked.latency()));
    case AskResult::Damaged: return QStringLiteral("    CRC wrong");
    default: return {};
    }
}

} // namespace

QString sentText(qint64 at, const QByteArray &bytes)
{
    return QStringLiteral("%1 > %2").arg(timeText(at), bytesText(bytes));
}

QString receivedText(qint64 at, const QByteArray &bytes)
{
    return QStringLiteral("%1 < %2").arg(timeText(at), bytesText(bytes));
}

QString eventText(qint64 at, const QString &text)
{
    return QStringLiteral("%1   %2").arg(timeText(at), text);
}

QStringList evidenceOf(const Asked &asked)
{
    const size_t mostSegments = 4;
    QStringList lines{sentText(asked.sentAt, asked.request)};
    for (size_t i = 0; i < asked.segments.size() && i < mostSegments; ++i)
        lines += receivedText(asked.segments[i].at, asked.segments[i].bytes);
    if (asked.segments.size() > mostSegments)
        lines += QStringLiteral("    in %1 parts").arg(asked.segments.size());
    if (asked.isLate)
        lines += receivedText(asked.repliedAt, asked.reply);
    const QString outcome = outcomeText(asked);
    if (!outcome.isEmpty())
        lines += outcome;
    return lines;
}

QStringList evidenceOf(const std::vector<const Asked *> &asked, size_t most)
{
    QStringList lines;
    for (size_t i = 0; i < asked.size() && i < most; ++i)
        lines += evidenceOf(*asked[i]);
    return lines;
}

QStringList evidenceOf(const std::vector<Stray> &strays, size_t most)
{
    QStringList lines;
    for (size_t i = 0; i < strays.size() && i < most; ++i)
        lines += receivedText(strays[i].at, strays[i].bytes);
    if (strays.size() > most)
        lines += QStringLiteral("    and %1 more").arg(strays.size() - most);
    return lines;
}

QString durationText(qint64 microseconds)
{
    const double milliseconds = static_cast<double>(microseconds) / MicrosecondsPerMillisecond;
    const double manyMilliseconds = 1000;
    if (milliseconds >= manyMilliseconds)
        return QStringLiteral("%1 s").arg(milliseconds / manyMilliseconds, 0, 'f', 1);
    return QStringLiteral("%1 ms").arg(milliseconds, 0, 'f',
                                       milliseconds < 1    ? 2
                                       : milliseconds < 10 ? 1
                                                           : 0);
}

int roundedUp(qint64 microseconds, int step)
{
    const qint64 milliseconds = (microseconds + 999) / 1000;
    return static_cast<int>((milliseconds + step - 1) / step * step);
}

QString listText(const QStringList &parts, const QString &lastWord)
{
    if (parts.size() < 2)
        return parts.join(QString());
    return parts.mid(0, parts.size() - 1).join(QStringLiteral(", ")) + QLatin1Char(' ') + lastWord +
           QLatin1Char(' ') + parts.last();
}
