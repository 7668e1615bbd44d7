#pragma once

#include "session.h"

#include <functional>

/// Finds which addresses of an area a slave has, by reading ranges and halving those that it refuses.
class RangeScan
{
public:
    /// \a probe has the station, the area and the kind.
    RangeScan(Session &session, const Items &probe);

    /// Scans the numbers \a first to \a last; goes on while \a mayGoOn says so. Success, or the exit code of
    /// the failure that ended the scan.
    int run(int first, int last, const std::function<bool(int number)> &mayGoOn);

    /// "HR1..100", in rising order.
    QStringList found() const;
    /// The last number of which it is known whether it exists.
    int scannedTo() const { return m_scannedTo; }
    const Items &lastItems() const { return m_last; }

private:
    enum class Answer { There, Gap, TooMany, Ended };

    Answer scan(int first, int last, bool hasGap);
    Answer halve(int first, int last, bool hasGap);
    Answer ask(int first, int last);
    Answer refusal(int count);
    void add(int first, int last);

    struct Range {
        int first;
        int last;
    };

    Session &m_session;
    Items m_last;
    std::function<bool(int)> m_mayGoOn;
    std::vector<Range> m_found;
    int m_atOnce = 1;
    int m_scannedTo = 0;
    int m_code = Success;
};
