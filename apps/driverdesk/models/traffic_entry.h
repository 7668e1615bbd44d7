#pragma once

#include <QByteArray>
#include <QString>

/// A line of a trace taken apart.
struct TrafficEntry {
    QString line; ///< as it stands in a trace
    QString time; ///< "13:05:09.007"
    QChar mark;   ///< '>' sent, '<' received, '!' dropped, '-' an event
    QByteArray bytes;
    QString meaning;
    bool isFailure =
        false; ///< an exception, a damaged or unwanted frame, an event that is none of the good ones

    bool isFrame() const { return !bytes.isEmpty(); }
    /// Of frames; -1 of events.
    int station() const;
    int function() const;
};

/// What is no line of a trace becomes an event with the whole text.
TrafficEntry parseTraceLine(const QString &line);
