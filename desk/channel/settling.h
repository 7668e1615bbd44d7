#pragma once

#include "desk/channel/exchange_settings.h"

#include <QByteArray>
#include <QList>
#include <QMap>

#include <functional>

/// What settling has cost so far.
struct SettleCounts {
    quint64 byEcho = 0;
    quint64 byQuiet = 0;
    quint64 probes = 0;   ///< requests of function 8 sent
    quint64 withheld = 0; ///< attempts that were not sent, since the line was not settled in time
    qint64 totalTime = 0; ///< microseconds from the end of an exchange that failed until the line was settled
    qint64 longestTime = 0;
};

/// Knows for each station whether a reply to something sent before may still come, and what settles that.
/// Does nothing itself; times are microseconds of any one clock.
class Settling
{
public:
    /// A number that no reply still under way carries.
    typedef std::function<quint16()> NumberSource;

    /// What a station does with function 8, as far as it has been seen.
    enum Habit { Unknown, Answers, Refuses, Ignores };

    /// A station that has answered, or that an exchange has failed with.
    struct Station {
        Habit habit = Unknown;
        bool hasAnswered = false; ///< with a whole reply to a request
        bool isSettled = true;
        qint64 lostAt = 0;
        qint64 quietSince = 0;
        qint64 heardAt = -1;     ///< when a frame of it came that answered no request; -1 for never
        qint64 probedAt = 0;     ///< the first time since the last request
        QList<quint16> probes;   ///< sent since the last request, not answered yet
        int ignored = 0;         ///< how often in a row it answered after probes that it had not
        bool isIgnoring = false; ///< its last probes were not answered; nor has anything been since
    };

    /// Numbers count up from the one after \a lastNumber, unless there is another source.
    Settling(const ExchangeSettings &settings, quint16 lastNumber);
    void setNumberSource(const NumberSource &numbers) { m_numbers = numbers; }
    void setTimeout(int milliseconds);
    /// On a line that echoes, function 8 proves nothing.
    void setEchoing(bool isEchoing) { m_isEchoing = isEchoing; }

    /// What happens: a request is sent, its reply has come whole, or its exchange ended without.
    void noteRequest(int station);
    void noteReply(int station);
    void noteLoss(int station, qint64 now);
    /// Any whole frame that comes, whoever it is for. True for an echo that has settled a line.
    bool noteFrame(const QByteArray &frame, qint64 now);
    void noteWithheld() { ++m_counts.withheld; }

    /// Whether a request may be sent to the station.
    bool isSettled(int station, qint64 now);
    /// Whether a probe can settle the station's line.
    bool wantsProbe(int station) const;
    /// The frame to send for that.
    QByteArray probe(int station, qint64 now);
    /// When the line counts as settled unless something comes; the largest number where that does not help.
    qint64 quietEnd(int station) const;
    /// When it makes sense to ask the station again: at once, or when the line is quiet.
    qint64 worthAskingAt(int station, qint64 now);

    const SettleCounts &counts() const { return m_counts; }
    /// All stations that have answered, or that an exchange has failed with.
    const QMap<int, Station> &stations() const { return m_stations; }

private:
    SettleRule ruleFor(int station) const;
    qint64 quietTime(int station) const;
    void settle(Station &station, qint64 now);
    bool noteProbeReply(Station &station, const QByteArray &frame, qint64 now);

    SettleRule m_rule;
    QMap<int, SettleRule> m_stationRules;
    qint64 m_timeout;
    NumberSource m_numbers;
    quint16 m_lastNumber;
    bool m_isEchoing;
    QMap<int, Station> m_stations;
    SettleCounts m_counts;
};
