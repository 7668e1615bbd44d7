#pragma once

#include "desk/link/session.h"
#include "desk/link/write_report.h"
#include "desk/snapshot/comparison.h"

/// What has become of an address that is put back.
enum class Restored {
    NotSent,
    Refused,     ///< with an exception, and so not executed
    Unconfirmed, ///< sent, and perhaps written
    Written,     ///< confirmed
    Different,   ///< read back as something else
    Verified     ///< read back as it was kept
};

/// Putting back what differs, run by run, and how far that has come.
class Restoration
{
public:
    /// Nothing is sent yet.
    explicit Restoration(const std::vector<WriteRun> &runs);

    size_t runs() const { return m_runs.size(); }
    /// What people call a run: "1-HR5..7".
    QString label(size_t run) const;
    /// How many addresses there are.
    int addresses() const;

    /// Writes a run, or reads it back; on failure the session says why.
    bool write(Session &session, size_t run);
    bool verify(Session &session, size_t run);

    /// What has become of an address; nothing when it is in no run.
    std::optional<Restored> stateOf(const Difference &difference) const;
    int count(Restored state) const;
    /// For people, "1-HR5: wrote 17, read back 18", of all that are Different.
    QStringList mismatches() const;
    /// For people, a line for each state that occurs: "not sent: 1-HR3..8 and 2-DO1".
    QStringList lines() const;

private:
    struct Run {
        WriteRun write;
        TypedItems typed;
        AreaRange range;
        std::vector<Restored> states;
        std::vector<QByteArray> readBack;
    };

    std::vector<Run> m_runs;
};

/// "verified", "different", "written", "unconfirmed", "refused" or "not-sent": the word for programs.
QString nameOf(Restored state);
