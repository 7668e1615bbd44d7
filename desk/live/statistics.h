#pragma once

#include <QMap>
#include <QStringList>

#include <map>

/// How long things took, in microseconds. Needs no more memory however many there were.
class Durations
{
public:
    void add(qint64 microseconds);

    quint64 count() const { return m_count; }
    /// The time below which this share of them lies, to three digits; -1 when there was none.
    qint64 quantile(double share) const;

private:
    std::map<qint64, quint64> m_counts; // of rounded times
    quint64 m_count = 0;
};

/// Counts transactions, failures by their text, and how long the good ones took.
class Statistics
{
public:
    /// \a latency is that of the reply, \a duration that of the transaction with all its attempts and pauses.
    void addSuccess(qint64 latency, qint64 duration);
    /// \a advice is what to look at next.
    void addFailure(const QString &text, const QString &advice = {});

    quint64 transactions() const { return m_latencies.count() + m_failures; }
    quint64 failures() const { return m_failures; }
    const Durations &latencies() const { return m_latencies; }
    const Durations &durations() const { return m_durations; }

    /// For people, after \a milliseconds.
    QStringList lines(qint64 milliseconds) const;

private:
    struct Failed {
        quint64 count = 0;
        QString advice; // of the last one
    };

    Durations m_latencies;
    Durations m_durations;
    QMap<QString, Failed> m_failed; // by text
    quint64 m_failures = 0;
};
