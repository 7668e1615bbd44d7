#pragma once

#include "desk/link/session.h"
#include "desk/live/station_pacing.h"
#include "desk/readings/value_readings.h"
#include "desk/refresh/refresh.h"

#include <QDateTime>

#include <functional>
#include <map>
#include <set>

/// What becomes of readings.
class ReadingListener
{
public:
    virtual ~ReadingListener() = default;

    /// A reading is done. \a data is what the driver would have given for it alone; the session's last
    /// command brought it, perhaps with others. False when nobody wants to know more.
    virtual bool add(size_t reading, const QByteArray &data) = 0;
    /// They have failed for the reason of the session's last command.
    virtual bool addFailure(const std::vector<size_t> &readings, const Failure &failure) = 0;
    /// They were not asked for, since they were refused before, or their station has not answered of late.
    virtual bool addNotAsked(const std::vector<size_t> &readings, const Failure &failure) = 0;
    /// The driver has carried out a command, which brought something or nothing.
    virtual void addCommand(bool isRead) = 0;
};

/// Which readings can be planned, and where they lie.
struct PlannedPoints {
    std::vector<AreaRange> points;
    std::vector<size_t> readings; ///< by point
    std::vector<size_t> others;   ///< that are asked for as they are
};
PlannedPoints plannedPointsOf(const std::vector<Reading> &readings, int linkStation);

/// Reads the same readings round after round through the driver, by as few requests as possible.
class PlannedReadings : private RefreshClient
{
public:
    /// What is learnt of the stations is kept in \a learnt.
    PlannedReadings(Session &session, const std::vector<Reading> &readings, Learnt &learnt);

    /// Reads all once. Each reading is reported, unless the listener or the channel's cancellation ends the
    /// round. False when the listener wanted no more.
    bool readRound(ReadingListener &listener);
    /// Asks for what would tell how to plan better, after a round that others follow.
    void explore();

    /// Asks stations that do not answer less often; \a pacing stays the caller's. Without it every round asks
    /// all.
    void setPacing(StationPacing *pacing) { m_pacing = pacing; }

    /// Milliseconds since 1970, for what was refused and is asked again some time; the system's by default.
    void setClock(const std::function<qint64()> &clock) { m_clock = clock; }

    /// How the readings are asked for.
    Refresh &refresh() { return m_refresh; }
    /// Readings that are not planned, but asked for as they are.
    const std::vector<size_t> &unplanned() const { return m_points.others; }

private:
    RangeReply read(const AreaRange &range) override;
    void given(const AreaRange &range, const std::vector<int> &points) override;
    void failed(const AreaRange &range, const std::vector<int> &points) override;
    void notAsked(const Refusals::Refusal &refusal, const std::vector<int> &points) override;

    bool isAway(int station);
    bool isHeldBack(int station);
    Items trialOf(int station) const;
    std::optional<QByteArray> ask(const Items &items);
    void notePace(const Items &items, bool isAnswered);
    Failure paceOf(int station);
    void failAway(int station, const std::vector<size_t> &readings);
    void readUnplanned();
    void readOne(size_t reading);
    void fail(const std::vector<size_t> &readings);
    std::vector<size_t> readingsOf(const std::vector<int> &points) const;
    bool isOver() const { return !m_isWanted || m_session.channel().isCancelled(); }

    Session &m_session;
    const std::vector<Reading> &m_readings;
    PlannedPoints m_points;
    Refresh m_refresh;
    std::function<qint64()> m_clock = QDateTime::currentMSecsSinceEpoch;
    StationPacing *m_pacing = nullptr;
    std::map<int, Items> m_lastGiven; // by station
    std::set<int> m_heldBack;         // stations that were not asked in this round
    ReadingListener *m_listener = nullptr;
    QByteArray m_data; // of the last range
    bool m_isWanted = true;
    bool m_isHopeless = false; // the last failure is one for all that follow
};
