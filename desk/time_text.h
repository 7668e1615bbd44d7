#pragma once

#include <QDateTime>

/// Times for people and programs, always with their offset from UTC, so that lines of two machines can be
/// compared.

/// "+01:00".
inline QString utcOffsetText(const QDateTime &time)
{
    const int minutes = time.offsetFromUtc() / 60;
    return (minutes < 0 ? QLatin1Char('-') : QLatin1Char('+')) +
           QTime(0, 0).addSecs(qAbs(minutes) * 60).toString(QStringLiteral("HH:mm"));
}

/// "13:05:09.007+01:00".
inline QString clockText(const QDateTime &time)
{
    return time.toString(QStringLiteral("HH:mm:ss.zzz")) + utcOffsetText(time);
}

/// "2026-03-01T13:05:09.007+01:00".
inline QString dateAndTimeText(const QDateTime &time)
{
    return time.toString(QStringLiteral("yyyy-MM-ddT")) + clockText(time);
}
