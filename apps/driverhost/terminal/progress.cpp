#include "apps/driverhost/terminal/progress.h"

#include "apps/driverhost/terminal/status_line.h"

#include <algorithm>

namespace
{

const int BarLength = 20;
const int TimeBetween = 100; // milliseconds

} // namespace

Progress::Progress(const QString &title, qint64 total) : m_title(title), m_total(std::max<qint64>(total, 1))
{
}

Progress::~Progress()
{
    clearStatus();
}

void Progress::show(qint64 done, const QString &note)
{
    m_done = done;
    showNote(note);
}

void Progress::showNote(const QString &note)
{
    if (m_isShown && !m_lastShown.hasExpired(TimeBetween))
        return;
    const int filled = static_cast<int>(std::min(m_done, m_total) * BarLength / m_total);
    const QString bar = QString(filled, QLatin1Char('#')) + QString(BarLength - filled, QLatin1Char('.'));
    showStatus(QStringLiteral("%1 [%2] %3 of %4  %5")
                   .arg(m_title, bar, QString::number(m_done), QString::number(m_total), note));
    m_isShown = true;
    m_lastShown.start();
}
