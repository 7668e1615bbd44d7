#include "desk/channel/timed_bytes.h"

void TimedBytes::add(const QByteArray &bytes, qint64 at)
{
    if (bytes.isEmpty())
        return;
    m_bytes += bytes;
    m_arrivals.append(qMakePair(sizeOf(bytes), at));
}

QByteArray TimedBytes::take(int count)
{
    QByteArray taken = m_bytes.left(count);
    m_bytes.remove(0, taken.size());
    for (int left = sizeOf(taken); left > 0;) {
        QPair<int, qint64> &first = m_arrivals.first();
        const int part = qMin(left, first.first);
        left -= part;
        first.first -= part;
        if (first.first == 0)
            m_arrivals.removeFirst();
    }
    return taken;
}

qint64 TimedBytes::arrivalOf(int index) const
{
    int segment = 0;
    while (index >= m_arrivals.at(segment).first)
        index -= m_arrivals.at(segment++).first;
    return m_arrivals.at(segment).second;
}
