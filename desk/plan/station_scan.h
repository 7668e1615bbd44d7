#pragma once

#include <QString>

#include <functional>
#include <vector>

/// What came of asking one station.
struct StationAnswer {
    enum Kind {
        Answers,
        Refuses,   ///< with an exception, which is an answer as well
        Absent,    ///< a gateway says that the station is not there
        Disturbed, ///< something came that is no good reply
        Echo,      ///< the request itself came back
        Silent,
        Hopeless ///< no connection, or nothing that could be sent: the scan ends
    };

    Kind kind = Silent;
    /// The station whose reply came instead; -1 when none did.
    int otherStation = -1;
    /// For people, and one word for programs.
    QString text;
    QString failure;
    /// What to look at next.
    QString advice = {};
};

/// Finds the stations that are there by asking one after the other.
class StationScan
{
public:
    struct Result {
        int station;
        StationAnswer answer;
    };
    using Prober = std::function<StationAnswer(int station)>;
    using Watcher = std::function<bool(int done, int total, int found)>;

    explicit StationScan(Prober prober) : m_prober(std::move(prober)) {}

    /// Asks \a stations; goes on while \a mayGoOn says so. False when it did not come to the end.
    bool run(const std::vector<int> &stations, const Watcher &mayGoOn);

    /// Those worth asking again, more slowly: all that are not found when none is; otherwise those that
    /// something disturbed, and those whose replies came to the wrong request. None on a line that echoes.
    std::vector<int> doubtful() const;

    /// The results of some kinds, by station.
    std::vector<Result> found() const;
    std::vector<Result> disturbed() const;
    int count(StationAnswer::Kind kind) const;
    /// The last one that was asked to the end; 0 when none was.
    int scannedTo() const { return m_scannedTo; }
    /// How many.
    int scanned() const { return static_cast<int>(m_results.size()); }

private:
    void note(int station, const StationAnswer &answer);

    Prober m_prober;
    std::vector<Result> m_results; // by station
    int m_scannedTo = 0;
};
