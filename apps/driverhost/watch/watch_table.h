#pragma once

#include "desk/live/watched_value.h"
#include "desk/readings/readings.h"

#include <QStringList>

/// What a watch has read of late, as a table of one line a value.
class WatchTable
{
public:
    /// A value is live no longer than \a lifetime milliseconds after it was read.
    WatchTable(const std::vector<Reading> &readings, qint64 lifetime);

    /// Rows of one reading, as they came at \a now, in milliseconds.
    void add(size_t reading, const std::vector<ValueRow> &rows, qint64 now);
    /// \a error says what has failed.
    void addFailure(size_t reading, const std::vector<ValueRow> &rows, const QString &error);

    /// The titles and the values, no line longer than \a width.
    QStringList lines(qint64 now, int width, bool isUnicode) const;
    /// What has failed the last time, and what to look at next, each text once.
    QStringList errors() const;
    QStringList advices() const;
    /// What the column of bars shows.
    static QString legend(bool isUnicode);

private:
    struct State {
        std::vector<WatchedValue> values;
        qint64 latency = -1;
        qint64 duration = -1;
        int attempts = 0;
        int errors = 0;
        QString error;
        QString advice;
    };

    QStringList cells(const QString &label, const State &state, const WatchedValue &value, qint64 now) const;

    const std::vector<Reading> &m_readings;
    std::vector<State> m_states;
    bool m_hasNames = false;
};
