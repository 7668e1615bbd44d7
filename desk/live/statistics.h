#pragma once

#include <QMap>
#include <QStringList>

#include <map>

/// Counts transactions, failures by their text, and how long the good ones took. Needs no more memory however
/// long it counts.
class Statistics
{
public:
    void addSuccess(qint64 microseconds);
    void addFailure(const QString &text);

    quint64 transactions() const { return m_successes + m_failures; }
    quint64 failures() const { return m_failures; }
    /// Latency below which this share of the successes lies, in microseconds, to three digits; -1 when there
    /// was none.
    qint64 quantile(double share) const;

    /// For people, after \a milliseconds.
    QStringList lines(qint64 milliseconds) const;

private:
    std::map<qint64, quint64> m_latencies; // microseconds, rounded
    QMap<QString, quint64> m_texts;
    quint64 m_successes = 0;
    quint64 m_failures = 0;
};
