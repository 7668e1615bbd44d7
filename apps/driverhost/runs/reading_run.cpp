#include "apps/driverhost/runs/reading_run.h"

#include "apps/driverhost/console/messages.h"
#include "desk/items/number_text.h"
#include "desk/output/summary.h"

ReadingRun::ReadingRun(Session &session, const std::vector<Reading> &readings)
    : m_session(session), m_readings(readings), m_rows(readings.size())
{
}

bool ReadingRun::read(size_t reading)
{
    const std::optional<QByteArray> data = m_session.read(m_readings[reading].items);
    if (!data)
        return false;
    add(reading, *data);
    reportOddSuccess(m_session, ::labelOf(m_readings[reading]));
    return true;
}

void ReadingRun::add(size_t reading, const QByteArray &data)
{
    const Reading &read = m_readings[reading];
    m_rows[reading] = rowsOf(read, data, m_session.stationFor(read.items));
}

void ReadingRun::fail(const std::vector<size_t> &readings)
{
    // What was given up because the run is over is no failure of the slave.
    if (StopSignal::raised())
        return;
    reportFailure(m_session, labelOf(readings));
    const Failure failure = m_session.failure();
    noteFailure(failure);
    for (const size_t reading : readings)
        addFailedRows(reading, failure);
}

void ReadingRun::failUnasked(const std::vector<size_t> &readings, const Failure &failure)
{
    reportError(QStringLiteral("%1: %2").arg(labelOf(readings), failure.text));
    noteFailure(failure);
    for (const size_t reading : readings)
        addFailedRows(reading, failure);
}

void ReadingRun::failOthers(size_t first)
{
    for (size_t reading = first; reading < m_readings.size(); ++reading)
        addFailedRows(reading, m_session.failure());
}

QString ReadingRun::labelOf(const std::vector<size_t> &readings) const
{
    std::vector<const Reading *> these;
    these.reserve(readings.size());
    for (const size_t reading : readings)
        these.push_back(&m_readings[reading]);
    return ::labelOf(these);
}

void ReadingRun::noteFailure(const Failure &failure)
{
    const ExitCode code = exitCodeOf(failure);
    m_code = m_code == Success ? code : m_code;
    m_isHopeless = code == CannotConnect || code == DatabaseError;
}

void ReadingRun::addFailedRows(size_t reading, const Failure &failure)
{
    const Reading &failed = m_readings[reading];
    m_rows[reading] =
        failedRowsOf(failed, {nameOf(failure.kind), failure.text}, m_session.stationFor(failed.items));
    m_failed += static_cast<int>(m_rows[reading].size());
}

int ReadingRun::finish(OutputFormat format, const InterruptibleRun &run) const
{
    std::vector<ValueRow> rows;
    for (const std::vector<ValueRow> &some : m_rows)
        rows.insert(rows.end(), some.begin(), some.end());
    const int read = static_cast<int>(rows.size()) - m_failed;
    if (run.isInterrupted())
        reportError(QStringLiteral("interrupted: %1 read").arg(counted(read, "value")));
    QStringList lines = linesOf(rows, format);
    if (format == OutputFormat::Json)
        lines += summaryLine(m_session.counts(), {{QStringLiteral("values"), read},
                                                  {QStringLiteral("failed"), m_failed},
                                                  {QStringLiteral("interrupted"), run.isInterrupted()}});
    return lines.isEmpty() || print(lines) ? run.endOf(m_code) : OutputClosed;
}
