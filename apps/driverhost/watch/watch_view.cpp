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
    LineView(const std::vector<Reading> &readings, OutputFormat format) : m_format(format)
    {
        for (const Reading &reading : readings) {
            for (const Reading::Shown &shown : reading.shown)
                m_addressWidth = std::max(m_addressWidth, shown.address.size());
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
    bool addFailure(size_t reading, const std::vector<ValueRow> &rows, const QString &error) override
    {
        if (m_format != OutputFormat::Text)
            return add(reading, rows);
        reportError(dateAndTimeText(QDateTime::currentDateTime()) + QLatin1Char(' ') + error);
        return m_isOpen;
    }
    bool endRound() override { return m_isOpen; }

private:
    OutputFormat m_format;
    int m_addressWidth = 0;
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
