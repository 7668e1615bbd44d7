#pragma once

#include "desk/channel/backoff.h"

#include <map>

/// When stations are asked again that do not answer, so that one that is dead holds up the others no longer
/// than it must. Times are in microseconds of any one clock.
class StationPacing
{
public:
    /// So many failures in a row are followed by one attempt more, then by pauses.
    static const int MaxFailures = 2;

    void beginRound(qint64 now);
    /// Whether the station is to be asked in this round: not one that has failed in it, nor one that may wait
    /// for the next round.
    bool isDue(int station, qint64 now) const;
    /// When it is due; in the past for one that answers.
    qint64 dueAt(int station) const;
    /// Whether it is to be tried with one attempt before anything else is asked of it.
    bool isFailing(int station) const { return failures(station) >= MaxFailures; }
    /// In a row.
    int failures(int station) const;

    void noteAnswer(int station);
    /// It was asked at \a askedAt, and did not answer.
    void noteFailure(int station, qint64 askedAt);

private:
    struct Failures {
        Failures();

        int count = 0;
        quint64 round = 0; // of the last one
        Backoff backoff;
    };

    std::map<int, Failures> m_failures; // of stations that fail
    quint64 m_round = 0;
    qint64 m_roundBegan = 0;
    qint64 m_roundTime = 0; // from the beginning of the last one to that of this one
};
