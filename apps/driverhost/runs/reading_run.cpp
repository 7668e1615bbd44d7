#include "apps/driverhost/runs/reading_run.h"

#include "apps/driverhost/console/messages.h"
#include "desk/items/number_text.h"
#include "desk/output/summary.h"

bool ReadingRun::read(const Reading &reading)
{
    const std::optional<QByteArray> data = m_session.read(reading.items);
    if (!data)
        return false;
    add(reading, *data);
    reportOddSuccess(m_session, labelOf(reading));
    return true;
}

void ReadingRun::add(const Reading &reading, const QByteArray &data)
{
    const std::vector<ValueRow> rows = rowsOf(reading, data, m_session.stationFor(reading.items));
    m_rows.insert(m_rows.end(), rows.begin(), rows.end());
}

void ReadingRun::fail(const std::vector<const Reading *> &readings)
{
    // What was given up because the run is over is no failure of the slave.
    if (StopSignal::raised())
        return;
    reportFailure(m_session, labelOf(readings));
    const Failure failure = m_session.failure();
    noteFailure(failure);
    for (const Reading *reading : readings)
        addFailedRows(*reading, failure);
}

void ReadingRun::failUnasked(const std::vector<const Reading *> &readings, const Failure &failure)
{
    reportError(QStringLiteral("%1: %2").arg(labelOf(readings), failure.text));
    noteFailure(failure);
    for (const Reading *reading : readings)
        addFailedRows(*reading, failure);
}

void ReadingRun::failOthers(const std::vector<Reading> &readings, size_t first)
{
    for (size_t i = first; i < readings.size(); ++i)
        addFailedRows(readings[i], m_session.failure());
}

void ReadingRun::noteFailure(const Failure &failure)
{
    const ExitCode code = exitCodeOf(failure);
    m_code = m_code == Success ? code : m_code;
    m_isHopeless = code == CannotConnect || code == DatabaseError;
}

void ReadingRun::addFailedRows(const Reading &reading, const Failure &failure)
{
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
