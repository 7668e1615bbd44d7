#include "apps/driverhost/commands/watch_view.h"

#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/console/terminal.h"
#include "desk/live/watched_value.h"
#include "desk/output/table.h"
#include "desk/time_text.h"
#include "drivers/qt/qt_lines.h"

#include <QElapsedTimer>

#include <algorithm>

namespace
{

const qint64 MillisecondsOfSecond = 1000;
const double MicrosecondsOfMillisecond = 1000;

// One line a value, with its time.
class LineView : public WatchListener
{
public:
    LineView(const std::vector<Reading> &readings, OutputFormat format) : m_format(format)
    {
        for (const Reading &reading : readings) {
            for (const Reading::Shown &shown : reading.shown)
                m_addressWidth = std::max(m_addressWidth, sizeOf(shown.address));
        }
        const QString titles = seriesTitles(format);
        m_isOpen = titles.isEmpty() || print({titles});
    }

    bool add(size_t /*reading*/, const std::vector<ValueRow> &rows) override
    {
        QStringList lines;
        for (const ValueRow &row : rows)
            lines += seriesLine(row, m_format, m_addressWidth);
        m_isOpen = m_isOpen && print(lines);
        return m_isOpen;
    }
    bool addFailure(size_t /*reading*/, const QString &error) override
    {
        reportError(dateAndTimeText(QDateTime::currentDateTime()) + QLatin1Char(' ') + error);
        return m_isOpen;
    }
    bool endRound() override { return m_isOpen; }

private:
    OutputFormat m_format;
    int m_addressWidth = 0;
    bool m_isOpen = true;
};

// A table that is drawn again after every round.
class ScreenView : public WatchListener
{
public:
    ScreenView(const std::vector<Reading> &readings, const WatchRun &run)
        : m_readings(readings), m_title(run.title), m_states(readings.size()), m_isUnicode(takesUnicode())
    {
        const qint64 lifetime = 2 * qint64(run.settings.interval) + MillisecondsOfSecond;
        for (size_t i = 0; i < readings.size(); ++i)
            m_states[i].values.resize(readings[i].shown.size(), WatchedValue(lifetime));
        m_clock.start();
    }

    bool add(size_t reading, const std::vector<ValueRow> &rows) override
    {
        State &state = m_states[reading];
        for (size_t i = 0; i < rows.size(); ++i)
            state.values[i].add(rows[i], m_clock.elapsed());
        state.latency = rows.empty() ? -1 : rows.front().latency;
        state.error.clear();
        return true;
    }
    bool addFailure(size_t reading, const QString &error) override
    {
        State &state = m_states[reading];
        for (WatchedValue &value : state.values)
            value.addGap();
        ++state.errors;
        state.error = error;
        return true;
    }
    bool endRound() override
    {
        ++m_rounds;
        return draw();
    }
    // A slave that answers no more must not leave its last values standing.
    void tick() override
    {
        if (m_rounds > 0 && m_clock.elapsed() - m_drawnAt >= MillisecondsOfSecond)
            draw();
    }

private:
    struct State {
        std::vector<WatchedValue> values;
        qint64 latency = -1;
        int errors = 0;
        QString error;
    };

    bool draw()
    {
        m_drawnAt = m_clock.elapsed();
        return m_screen.show(lines());
    }
    QStringList lines() const
    {
        Table table({QStringLiteral("address"), QStringLiteral("offset"), QStringLiteral("value"), QString(),
                     QStringLiteral("ms"), QStringLiteral("errors"), QStringLiteral("course"), QString()},
                    {1, 2, 4, 5});
        QStringList errors;
        for (size_t i = 0; i < m_states.size(); ++i) {
            for (size_t j = 0; j < m_states[i].values.size(); ++j)
                table.addRow(cells(m_readings[i].shown[j], m_states[i], m_states[i].values[j]));
            if (!m_states[i].error.isEmpty() && !errors.contains(m_states[i].error))
                errors += m_states[i].error;
        }
        const QString head =
            QStringLiteral("%1  round %2  %3")
                .arg(m_title, QString::number(m_rounds), clockText(QDateTime::currentDateTime()));
        return QStringList{head} + table.lines() + errors;
    }
    QStringList cells(const Reading::Shown &shown, const State &state, const WatchedValue &value) const
    {
        const qint64 now = m_clock.elapsed();
        const bool isLive = value.isLive(now);
        return {shown.address,
                shown.offset < 0 ? QString() : QString::number(shown.offset),
                value.text(now),
                isLive && value.hasChanged() ? QStringLiteral("*") : QString(),
                isLive
                    ? QString::number(static_cast<double>(state.latency) / MicrosecondsOfMillisecond, 'f', 1)
                    : QString(),
                QString::number(state.errors),
                value.sparkline(m_isUnicode),
                value.note(now)};
    }

    const std::vector<Reading> &m_readings;
    QString m_title;
    std::vector<State> m_states;
    bool m_isUnicode;
    int m_rounds = 0;
    qint64 m_drawnAt = 0;
    QElapsedTimer m_clock;
    LiveLines m_screen;
};

} // namespace

std::unique_ptr<WatchListener> makeWatchView(const std::vector<Reading> &readings, const WatchRun &run)
{
    if (run.format == OutputFormat::Text && !run.isTraced && isScreen())
        return std::make_unique<ScreenView>(readings, run);
    return std::make_unique<LineView>(readings, run.format);
}
