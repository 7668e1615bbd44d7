#pragma once

#include "apps/driverhost/console/interruptible_run.h"
#include "desk/output/output_form.h"
#include "desk/readings/readings.h"

/// What the subcommands have in common that read values once: rows of everything, also of what failed, and
/// the first failure for the exit code.
class ReadingRun
{
public:
    explicit ReadingRun(Session &session) : m_session(session) {}

    /// False when the driver fails; nothing is noted then.
    bool read(const Reading &reading);
    /// Notes what the driver gave for \a reading.
    void add(const Reading &reading, const QByteArray &data);
    /// Reports the session's failure for all of the readings and notes it, or that nobody waited for its end.
    void fail(const std::vector<const Reading *> &readings);
    /// The same for readings that were not asked for.
    void failUnasked(const std::vector<const Reading *> &readings, const Failure &failure);
    /// Notes those from \a first on as failed for the reason of the last one, without trying.
    void failOthers(const std::vector<Reading> &readings, size_t first);

    /// Whether the last failure is one for all that follow: no connection, no project.
    bool isHopeless() const { return m_isHopeless; }
    /// Prints the rows; the exit code.
    int finish(OutputFormat format, const InterruptibleRun &run) const;

private:
    void addFailedRows(const Reading &reading, const Failure &failure);
    void noteFailure(const Failure &failure);

    Session &m_session;
    std::vector<ValueRow> m_rows;
    int m_failed = 0;
    int m_code = Success;
    bool m_isHopeless = false;
};
