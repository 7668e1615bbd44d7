#include "apps/driverhost/runs/planned_run.h"

#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/runs/reading_run.h"
#include "apps/driverhost/terminal/progress.h"
#include "desk/live/planned_readings.h"

#include <algorithm>

namespace
{

class RunListener : public ReadingListener
{
public:
    RunListener(Session &session, const std::vector<Reading> &readings, ReadingRun &values,
                Progress &progress)
        : m_session(session), m_readings(readings), m_values(values), m_progress(progress)
    {
    }

    bool add(size_t reading, const QByteArray &data) override
    {
        m_values.add(reading, data);
        if (m_isFirstOfCommand)
            reportOddSuccess(m_session, labelOf(m_readings[reading]));
        m_isFirstOfCommand = false;
        m_progress.show(++m_done);
        return true;
    }
    bool addFailure(const std::vector<size_t> &readings, const Failure & /*failure*/) override
    {
        m_values.fail(readings);
        m_done += static_cast<qint64>(readings.size());
        return true;
    }
    bool addNotAsked(const std::vector<size_t> &readings, const Failure &failure) override
    {
        m_values.failUnasked(readings, failure);
        m_done += static_cast<qint64>(readings.size());
        return true;
    }
    void addCommand(bool /*isRead*/) override { m_isFirstOfCommand = true; }

private:
    Session &m_session;
    const std::vector<Reading> &m_readings;
    ReadingRun &m_values;
    Progress &m_progress;
    qint64 m_done = 0;
    bool m_isFirstOfCommand = false;
};

} // namespace

int readPlanned(Session &session, const std::vector<Reading> &readings, Learnt &learnt, OutputFormat format,
                const QString &title)
{
    const bool isAnyToAll = std::any_of(readings.begin(), readings.end(), [&](const Reading &reading) {
        return session.stationFor(reading.items) == modbus::BroadcastStation;
    });
    if (isAnyToAll)
        reportBroadcast(modbus::BroadcastStation);
    Progress progress(title, static_cast<qint64>(readings.size()));
    const InterruptibleRun run(session, [&](const QString &wait) { progress.showNote(wait); });
    ReadingRun values(session, readings);
    RunListener listener(session, readings, values, progress);
    PlannedReadings(session, readings, learnt).readRound(listener);
    return values.finish(format, run);
}
