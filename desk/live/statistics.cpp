#include "desk/live/statistics.h"

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

} // namespace

void Statistics::addSuccess(qint64 microseconds)
{
    ++m_successes;
    ++m_latencies[rounded(microseconds)];
}

void Statistics::addFailure(const QString &text)
{
    ++m_failures;
    ++m_texts[text];
}

qint64 Statistics::quantile(double share) const
{
    quint64 below = 0;
    for (const auto &[latency, count] : m_latencies) {
        below += count;
        if (static_cast<double>(below) >= share * static_cast<double>(m_successes))
            return latency;
    }
    return m_latencies.empty() ? -1 : m_latencies.rbegin()->first;
}

QStringList Statistics::lines(qint64 milliseconds) const
{
    QStringList lines{QStringLiteral("%1 transactions in %2 s, %3 failed")
                          .arg(QString::number(transactions()),
                               QString::number(static_cast<double>(milliseconds) / 1000, 'f', 1),
                               QString::number(m_failures))};
    for (auto text = m_texts.begin(); text != m_texts.end(); ++text)
        lines += QStringLiteral("  %1 x %2").arg(QString::number(text.value()), text.key());
    if (m_successes > 0) {
        lines += QStringLiteral("latency min %1, median %2, p99 %3, max %4")
                     .arg(millisecondsText(quantile(0)), millisecondsText(quantile(0.5)),
                          millisecondsText(quantile(0.99)), millisecondsText(quantile(1)));
    }
    return lines;
}
