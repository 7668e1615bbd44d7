#pragma once

#include <QString>

class QDataStream;

/// Timing and addressing of one link, as the host keeps it.
struct DriverSetting {
    /// Time to wait for a reply, in milliseconds.
    int timeout;
    /// Number of further attempts after a failed one.
    int retry;
    /// Default station (slave) id.
    int stationId;
    /// Pause before each transaction, in milliseconds.
    int delay;
    /// Not persisted; empty and false but for the longest constructor.
    QString auxText;
    bool auxFlag; ///< \copybrief auxText

    /// All zero and empty; something to read a stream into.
    DriverSetting();
    /// No text and no flag.
    DriverSetting(int timeoutMs, int retries, int station, int delayMs);
    /// The same: the text and the number belong to other drivers' records and are dropped.
    DriverSetting(int timeoutMs, int retries, int station, int delayMs, const QString & /*ignored*/,
                  unsigned short /*ignored*/);
    /// Keeps the second text and the flag; the first text and the number are dropped.
    DriverSetting(int timeoutMs, int retries, int station, int delayMs, const QString & /*ignored*/,
                  unsigned short /*ignored*/, const QString &text, bool flag);

    /// Takes over everything of \a other but auxFlag, which stays as it is.
    void copy(const DriverSetting &other);
    /// Writes one line to the debug output: timeout: 3000 retry: 3 stationid: 1 delay: 0
    void dump() const;
};

/// \relates DriverSetting
/// Four qint32 in the stream's byte order: timeout, retry, stationId, delay. auxText and auxFlag are not
/// persisted, and reading leaves them as they were. After a stream that is too short the fields hold what
/// Qt's operators left there, and its status says so.
/// @{
QDataStream &operator<<(QDataStream &stream, const DriverSetting &setting);
QDataStream &operator>>(QDataStream &stream, DriverSetting &setting);
/// @}
