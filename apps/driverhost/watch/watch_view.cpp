#include "apps/driverhost/watch/watch_view.h"

#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/terminal/terminal.h"
#include "apps/driverhost/watch/screen_view.h"
#include "desk/output/output_form.h"
#include "desk/time_text.h"

#include <algorithm>
#include <unistd.h>

namespace
{

// One line a value, with its time.
class LineView : public WatchListener
{
public:
    LineView(const std::vector<Reading> &readings, OutputFormat format)
    {
        m_form.format = format;
        for (const Reading &reading : readings) {
            for (const Reading::Shown &shown : reading.shown) {
                m_form.labelWidth = std::max(m_form.labelWidth, labelOf(shown).size());
                m_form.hasNames = m_form.hasNames || !shown.point->name.isEmpty();
            }
        }
        const QString titles = seriesTitles(m_form);
        m_isOpen = titles.isEmpty() || print({titles});
    }

    bool add(size_t /*reading*/, const std::vector<ValueRow> &rows) override
    {
        QStringList lines;
        for (const ValueRow &row : rows)
            lines += seriesLine(row, m_form);
        m_isOpen = m_isOpen && print(lines);
        return m_isOpen;
    }
    bool addFailure(size_t reading, const std::vector<ValueRow> &rows, const QString &error) override
    {
        if (m_form.format != OutputFormat::Text)
            return add(reading, rows);
        reportError(dateAndTimeText(QDateTime::currentDateTime()) + QLatin1Char(' ') + error);
        return m_isOpen;
    }
    bool endRound() override { return m_isOpen; }

private:
    SeriesForm m_form;
    bool m_isOpen = true;
};

} // namespace

std::unique_ptr<WatchListener> makeWatchView(const Session &session, const std::vector<Reading> &readings,
                                             const WatchRun &run)
{
    if (run.format != OutputFormat::Text || !isScreen())
        return std::make_unique<LineView>(readings, run.format);
    if (!run.isTraced || !isScreen(STDERR_FILENO))
        return makeScreenView(session, readings, run);
    report(QStringLiteral(
        "--trace: values come as lines, since frames would tear the table apart; with standard "
        "error in a file (2>trace.txt) the table stays"));
    return std::make_unique<LineView>(readings, run.format);
}
