#include "apps/driverhost/watch/screen_view.h"

#include "apps/driverhost/console/interruptible_run.h"
#include "apps/driverhost/terminal/live_screen.h"
#include "apps/driverhost/terminal/terminal.h"
#include "apps/driverhost/watch/watch_table.h"
#include "desk/output/summary.h"
#include "desk/time_text.h"
#include "drivers/qt/qt_lines.h"

#include <QElapsedTimer>

namespace
{

const qint64 Second = 1000; // in milliseconds
const qint64 SoonEnough = 100;
const int MaxErrors = 4;
const int MaxAdvices = 2;

// Not so many that the values have no room.
QStringList beginning(const QStringList &texts, int max)
{
    const int others = sizeOf(texts) - max;
    QStringList some = texts.mid(0, max);
    if (others > 0)
        some += QStringLiteral("(%1 more)").arg(others);
    return some;
}

QString timeText()
{
    const QDateTime now = QDateTime::currentDateTime();
    return now.toString(QStringLiteral("HH:mm:ss")) + utcOffsetText(now);
}

class ScreenView : public WatchListener
{
public:
    ScreenView(const Session &session, const std::vector<Reading> &readings, const WatchRun &run,
               const LogView *log)
        : m_session(session),
          m_log(log),
          m_title(run.title),
          m_table(readings, 2 * qint64(run.settings.interval) + Second),
          m_isUnicode(takesUnicode())
    {
        m_clock.start();
        draw();
    }

    bool add(size_t reading, const std::vector<ValueRow> &rows) override
    {
        m_table.add(reading, rows, m_clock.elapsed());
        m_hasNews = true;
        return true;
    }
    bool addFailure(size_t reading, const std::vector<ValueRow> &rows, const QString &error) override
    {
        m_table.addFailure(reading, rows, error);
        m_hasNews = true;
        return true;
    }
    bool endRound() override
    {
        ++m_rounds;
        return draw();
    }
    // A slave that answers no more must not leave its last values standing, nor keep those of others back.
    void tick() override
    {
        const qint64 age = m_clock.elapsed() - m_drawnAt;
        if (m_screen.isOutdated() || age >= (m_hasNews ? SoonEnough : Second))
            draw();
    }

private:
    bool draw()
    {
        m_drawnAt = m_clock.elapsed();
        m_hasNews = false;
        const QStringList lines = m_table.lines(m_drawnAt, screenWidth(), m_isUnicode);
        return m_screen.show({head() << lines.first(), lines.mid(1), foot()});
    }
    QStringList head() const
    {
        return {QStringLiteral("%1  round %2  %3").arg(m_title, QString::number(m_rounds), timeText()),
                countsText(m_session.counts().total())};
    }
    QStringList foot() const
    {
        QStringList lines = beginning(m_table.errors(), MaxErrors);
        for (const QString &advice : beginning(m_table.advices(), MaxAdvices))
            lines += QStringLiteral("  check: ") + advice;
        if (m_log != nullptr && !m_log->trouble().isEmpty())
            lines += m_log->trouble();
        const QString wait = waitText(m_session);
        return lines << (wait.isEmpty() ? WatchTable::legend(m_isUnicode) : wait);
    }

    const Session &m_session;
    const LogView *m_log;
    QString m_title;
    WatchTable m_table;
    bool m_isUnicode;
    int m_rounds = 0;
    qint64 m_drawnAt = 0;
    bool m_hasNews = false; // that nobody sees yet
    QElapsedTimer m_clock;
    LiveScreen m_screen;
};

} // namespace

std::unique_ptr<WatchListener> makeScreenView(const Session &session, const std::vector<Reading> &readings,
                                              const WatchRun &run, const LogView *log)
{
    return std::make_unique<ScreenView>(session, readings, run, log);
}
