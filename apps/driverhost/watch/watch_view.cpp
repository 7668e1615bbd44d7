#include "apps/driverhost/watch/watch_view.h"

#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/terminal/terminal.h"
#include "apps/driverhost/watch/screen_view.h"
#include "desk/time_text.h"

#include <algorithm>
#include <unistd.h>

namespace
{

// What fails together says the same of each of its values, and is reported once.
class RoundFailures
{
public:
    void report(const QString &error)
    {
        if (error != m_last)
            reportError(dateAndTimeText(QDateTime::currentDateTime()) + QLatin1Char(' ') + error);
        m_last = error;
    }
    void endRound() { m_last.clear(); }

private:
    QString m_last;
};

// Lines on standard output, as they come.
class LineView : public WatchListener
{
public:
    LineView(const std::vector<Reading> &readings, const RowSeriesForm &form)
        : m_series(readings, form), m_tellsFailures(form.format != OutputFormat::Text && !form.isWide)
    {
        const QString titles = m_series.titles();
        m_isOpen = titles.isEmpty() || print({titles});
    }

    bool add(size_t reading, const std::vector<ValueRow> &rows) override
    {
        return printAll(m_series.add(reading, rows));
    }
    bool addFailure(size_t reading, const std::vector<ValueRow> &rows, const QString &error) override
    {
        const QStringList lines = m_series.add(reading, rows);
        if (m_tellsFailures)
            return printAll(lines);
        m_failures.report(error);
        return m_isOpen;
    }
    // It was reported when it was refused.
    bool addNotAsked(size_t reading, const std::vector<ValueRow> &rows, const QString & /*error*/) override
    {
        const QStringList lines = m_series.add(reading, rows);
        return m_tellsFailures ? printAll(lines) : m_isOpen;
    }
    bool endRound() override
    {
        m_failures.endRound();
        return printAll(m_series.endRound());
    }

private:
    bool printAll(const QStringList &lines)
    {
        m_isOpen = m_isOpen && (lines.isEmpty() || print(lines));
        return m_isOpen;
    }

    RowSeries m_series;
    bool m_tellsFailures; // the lines do
    bool m_isOpen = true;
    RoundFailures m_failures;
};

// Where a file has the lines there are none but of failures.
class SilentView : public WatchListener
{
public:
    bool add(size_t /*reading*/, const std::vector<ValueRow> & /*rows*/) override { return true; }
    bool addFailure(size_t /*reading*/, const std::vector<ValueRow> & /*rows*/, const QString &error) override
    {
        m_failures.report(error);
        return true;
    }
    bool addNotAsked(size_t /*reading*/, const std::vector<ValueRow> & /*rows*/,
                     const QString & /*error*/) override
    {
        return true;
    }
    bool endRound() override
    {
        m_failures.endRound();
        return true;
    }

private:
    RoundFailures m_failures;
};

} // namespace

std::unique_ptr<WatchListener> makeWatchView(const Session &session, const std::vector<Reading> &readings,
                                             const WatchRun &run, const LogView *log)
{
    const bool hasTable = isScreen() && (run.log || run.form.format == OutputFormat::Text);
    const bool isTorn = run.isTraced && isScreen(STDERR_FILENO);
    if (hasTable && !isTorn)
        return makeScreenView(session, readings, run, log);
    if (hasTable)
        report(QStringLiteral(
            "--trace: values come as lines, since frames would tear the table apart; with standard "
            "error in a file (2>trace.txt) the table stays"));
    if (run.log)
        return std::make_unique<SilentView>();
    return std::make_unique<LineView>(readings, run.form);
}
