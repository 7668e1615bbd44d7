#include "apps/driverhost/runs/reading_run.h"

#include "apps/driverhost/console/messages.h"
#include "desk/items/number_text.h"
#include "desk/output/summary.h"

bool ReadingRun::read(const Reading &reading)
{
    const std::optional<QByteArray> data = m_session.read(reading.items);
    if (!data)
        return false;
    const std::vector<ValueRow> rows = rowsOf(reading, *data, m_session.stationFor(reading.items));
    m_rows.insert(m_rows.end(), rows.begin(), rows.end());
    reportOddSuccess(m_session, labelOf(reading));
    return true;
}

void ReadingRun::fail(const Reading &reading)
{
    // What was given up because the run is over is no failure of the slave.
    if (StopSignal::raised())
        return;
    reportFailure(m_session, labelOf(reading));
    const ExitCode code = exitCodeOf(m_session.failure());
    m_code = m_code == Success ? code : m_code;
    m_isHopeless = code == CannotConnect || code == DatabaseError;
    addFailedRows(reading);
}

void ReadingRun::failOthers(const std::vector<Reading> &readings, size_t first)
{
    for (size_t i = first; i < readings.size(); ++i)
        addFailedRows(readings[i]);
}

void ReadingRun::addFailedRows(const Reading &reading)
{
    const Failure failure = m_session.failure();
    const std::vector<ValueRow> rows =
        failedRowsOf(reading, {nameOf(failure.kind), failure.text}, m_session.stationFor(reading.items));
    m_rows.insert(m_rows.end(), rows.begin(), rows.end());
    m_failed += static_cast<int>(rows.size());
}

int ReadingRun::finish(OutputFormat format, const InterruptibleRun &run) const
{
    const int read = static_cast<int>(m_rows.size()) - m_failed;
    if (run.isInterrupted())
        reportError(QStringLiteral("interrupted: %1 read").arg(counted(read, "value")));
    QStringList lines = linesOf(m_rows, format);
    if (format == OutputFormat::Json)
        lines += summaryLine(m_session.counts(), {{QStringLiteral("values"), read},
                                                  {QStringLiteral("failed"), m_failed},
                                                  {QStringLiteral("interrupted"), run.isInterrupted()}});
    return lines.isEmpty() || print(lines) ? run.endOf(m_code) : OutputClosed;
}
