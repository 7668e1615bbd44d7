#include "statistics.h"

namespace
{

// To three digits, which keeps the number of different latencies small.
qint64 rounded(qint64 number)
{
    const qint64 digits = 1000;
    const qint64 base = 10;
    qint64 unit = 1;
    while (number / unit >= digits)
        unit *= base;
    return number / unit * unit;
}

QString millisecondsText(qint64 microseconds)
{
    const double thousand = 1000;
    return QString::number(static_cast<double>(microseconds) / thousand) + QStringLiteral(" ms");
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
    const double thousand = 1000;
    QStringList lines{QStringLiteral("%1 transactions in %2 s, %3 failed")
                          .arg(QString::number(transactions()),
                               QString::number(static_cast<double>(milliseconds) / thousand, 'f', 1),
                               QString::number(m_failures))};
    for (auto text = m_texts.begin(); text != m_texts.end(); ++text)
        lines += QStringLiteral("  %1 x %2").arg(QString::number(text.value()), text.key());
    if (m_successes > 0) {
        const double half = 0.5;
        const double nearlyAll = 0.99;
        lines += QStringLiteral("latency min %1, median %2, p99 %3, max %4")
                     .arg(millisecondsText(quantile(0)), millisecondsText(quantile(half)),
                          millisecondsText(quantile(nearlyAll)), millisecondsText(quantile(1)));
    }
    return lines;
}
