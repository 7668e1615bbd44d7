#pragma once

#include "apps/driverhost/console/interruptible_run.h"
#include "desk/output/output_form.h"
#include "desk/readings/readings.h"

/// What the subcommands have in common that read values once: rows of everything, also of what failed, in the
/// order of the readings, and the first failure for the exit code.
class ReadingRun
{
public:
    /// \a readings must outlive it; it is told of them by their numbers.
    ReadingRun(Session &session, const std::vector<Reading> &readings);

    /// False when the driver fails; nothing is noted then.
    bool read(size_t reading);
    /// Notes what the driver gave for it.
    void add(size_t reading, const QByteArray &data);
    /// Reports the session's failure for all of the readings and notes it, or that nobody waited for its end.
    void fail(const std::vector<size_t> &readings);
    /// The same for readings that were not asked for.
    void failUnasked(const std::vector<size_t> &readings, const Failure &failure);
    /// Notes those from \a first on as failed for the reason of the last one, without trying.
    void failOthers(size_t first);

    /// Whether the last failure is one for all that follow: no connection, no project.
    bool isHopeless() const { return m_isHopeless; }
    /// Prints the rows; the exit code.
    int finish(OutputFormat format, const InterruptibleRun &run) const;

private:
    QString labelOf(const std::vector<size_t> &readings) const;
    void addFailedRows(size_t reading, const Failure &failure);
    void noteFailure(const Failure &failure);

    Session &m_session;
    const std::vector<Reading> &m_readings;
    std::vector<std::vector<ValueRow>> m_rows; // by reading
    int m_failed = 0;
    int m_code = Success;
    bool m_isHopeless = false;
};
