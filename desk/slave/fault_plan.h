#pragma once

#include "desk/result.h"

#include <QStringList>
#include <QVector>

#include <random>

/// One thing that a slave does wrong with a reply.
struct Fault {
    enum Kind {
        None,
        Silence,       ///< no reply
        Delay,         ///< the reply comes value milliseconds late
        Truncate,      ///< only the first value bytes
        WrongStation,  ///< in the name of station value, CRC right
        WrongFunction, ///< with function value, CRC right
        WrongCrc,      ///< one bit of the CRC is wrong
        Exception,     ///< exception value; the request is not executed
        JunkBefore,    ///< value bytes in front of the reply
        JunkAfter,     ///< value bytes after the reply
        Split,         ///< one byte a segment, value milliseconds apart
        Merge,         ///< held back and sent in one segment with the next reply
        Double,        ///< twice in one segment
        Stale,         ///< the previous reply once more, in one segment in front of this one
        Echo,          ///< the request in front of the reply, as a two-wire line returns it
        OtherMaster,   ///< the reply of station value to another master in front of the reply
        Late,          ///< value milliseconds late, on whichever connection is open then; what follows waits
        Reset,         ///< the connection is reset instead
        Close,         ///< the connection is closed instead
        HalfOpen       ///< from here on the connection stays up and nothing happens on it
    };

    Kind kind = None;
    /// See above; -1 leaves it to the slave.
    int value = -1;
};

/// The name of a fault in options and traces: "wrong-crc".
QString faultName(Fault::Kind kind);
QStringList allFaultNames();

/// Which replies go wrong, and how. The same seed and the same rules give the same faults.
class FaultPlan
{
public:
    explicit FaultPlan(quint32 seed = 1);

    void setSeed(quint32 seed);
    /// \a percent of the replies. All shares together make at most 100 %.
    void addShare(const Fault &fault, double percent);
    /// Every \a n-th reply; goes before the shares.
    void addEvery(const Fault &fault, int n);
    /// "silence=1%", "truncate:4=1/10": name, value, and a share or every n-th. The error says what is no
    /// such rule.
    Result<> add(const QString &text);
    /// These come first, once each.
    void inject(const Fault &fault, int count = 1);

    /// The fault of the next reply.
    Fault next();
    /// A number from \a min to \a max, from the same seed.
    int pick(int min, int max);

private:
    struct Rule {
        Fault fault;
        double share;
        int every;
    };

    Fault planned();

    std::mt19937 m_random;
    QVector<Rule> m_rules;
    QVector<Fault> m_injected;
    double m_shares = 0;
    quint64 m_replies = 0;
};
