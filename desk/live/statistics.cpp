#include "desk/live/statistics.h"

#include "desk/items/number_text.h"

namespace
{

// To three digits, which keeps the number of different latencies small.
qint64 rounded(qint64 number)
{
    qint64 unit = 1;
    while (number / unit >= 1000)
        unit *= 10;
    return number / unit * unit;
}

QString millisecondsText(qint64 microseconds)
{
    return QString::number(static_cast<double>(microseconds) / 1000) + QStringLiteral(" ms");
}

QString quantilesText(const char *what, const Durations &durations)
{
    return QStringLiteral("%1 min %2, median %3, p99 %4, max %5")
        .arg(QLatin1String(what), millisecondsText(durations.quantile(0)),
             millisecondsText(durations.quantile(0.5)), millisecondsText(durations.quantile(0.99)),
             millisecondsText(durations.quantile(1)));
}

} // namespace

void Durations::add(qint64 microseconds)
{
    ++m_count;
    ++m_counts[rounded(microseconds)];
}

qint64 Durations::quantile(double share) const
{
    quint64 below = 0;
    for (const auto &[time, count] : m_counts) {
        below += count;
        if (static_cast<double>(below) >= share * static_cast<double>(m_count))
            return time;
    }
    return -1;
}

void Statistics::addSuccess(qint64 latency, qint64 duration)
{
    m_latencies.add(latency);
    m_durations.add(duration);
}

void Statistics::addFailure(const QString &text, const QString &advice)
{
    ++m_failures;
    Failed &failed = m_failed[text];
    ++failed.count;
    failed.advice = advice;
}

QStringList Statistics::lines(qint64 milliseconds) const
{
    QStringList lines{QStringLiteral("%1 in %2 s, %3 failed")
                          .arg(counted(static_cast<qint64>(transactions()), "transaction"),
                               QString::number(static_cast<double>(milliseconds) / 1000, 'f', 1),
                               QString::number(m_failures))};
    for (auto failed = m_failed.begin(); failed != m_failed.end(); ++failed) {
        lines += QStringLiteral("  %1 x %2").arg(QString::number(failed->count), failed.key());
        if (!failed->advice.isEmpty())
            lines += QStringLiteral("    check: ") + failed->advice;
    }
    if (m_latencies.count() > 0) {
        lines += quantilesText("latency", m_latencies);
        lines += quantilesText("transaction", m_durations);
    }
    return lines;
}
