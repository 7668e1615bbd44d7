#pragma once

#include "desk/channel/line.h"
#include "desk/doctor/observing/doctor_options.h"
#include "desk/doctor/observing/observations.h"
#include "desk/wire/trace.h"

#include <functional>

/// Makes observations on a line: opens, asks and listens, and writes down what happens. Knows nothing of what
/// it means.
class Examiner
{
public:
    /// All stay the caller's.
    Examiner(Line &line, const DoctorOptions &options, Observations &seen);

    /// Opens a connection where there is none; tries again slowly where one was there before.
    bool connect();
    /// A single attempt.
    bool tryToConnect();
    void disconnect();
    bool isConnected() { return m_line.state() == LineState::Open; }

    /// Lets time pass without a connection.
    void pause(qint64 time) { m_line.pause(deadlineIn(time)); }

    /// Takes what comes within so many microseconds, or until the connection is over.
    void listen(qint64 time);
    /// Sends a frame after the pause that the station needs, or after \a pause, and waits for its reply.
    Asked ask(Purpose purpose, const QByteArray &request, qint64 wait, qint64 pause = 0);
    /// The same until it is answered, at most three times, as long as the station usually takes.
    Asked askPatiently(Purpose purpose, const QByteArray &request);
    /// Sends what is no frame and takes what comes of it.
    Asked say(const QByteArray &bytes, qint64 wait);

    /// Microseconds since the beginning.
    qint64 now() const { return m_line.now() - m_beganAt; }
    /// Whether something that takes so long may begin; notes when it may not.
    bool hasTimeFor(qint64 time);
    bool isCancelled() const { return m_line.isCancelled(); }
    /// How long to wait for a reply of a station of which nothing is known.
    qint64 longWait() const;
    /// The same where little time is left.
    qint64 patientWait() const;
    /// The same when replies of it were seen.
    qint64 usualWait() const;

    const DoctorOptions &options() const { return m_options; }
    Observations &seen() { return m_seen; }
    const Observations &seen() const { return m_seen; }

    void setTrace(const TraceSink &trace) { m_trace = trace; }
    /// Gets what is done, for people who wait.
    void setProgress(const std::function<void(const QString &)> &progress) { m_progress = progress; }
    void showProgress(const QString &text) const;
    /// Gets what is about to be written, before it is.
    void setAnnouncement(const std::function<void(const QString &)> &announce) { m_announce = announce; }
    void announce(const QString &text) const;

private:
    qint64 deadlineIn(qint64 time) const { return m_line.now() + time; }
    Connection &connection() { return m_seen.connections.back(); }
    void rest(qint64 until);
    bool send(Asked &asked);
    void takeReply(Asked &asked);
    qint64 enoughAt(const Asked &asked, ReplyFinder::Verdict verdict) const;
    void judge(Asked &asked, ReplyFinder &finder, ReplyFinder::Verdict verdict);
    void noteReply(Asked &asked, int start, int size) const;
    void noteParts(Asked &asked, const QList<SkippedPart> &parts);
    void forgetParts();
    void noteIdle(const QByteArray &bytes);
    void flushIdle();
    void noteStray(Stray stray);
    bool isLateReply(const Stray &stray);
    void noteEnd();
    void trace(FrameDirection direction, const QByteArray &bytes, const QByteArray &request = {}) const;
    void traceText(const QString &text) const;

    Line &m_line;
    const DoctorOptions &m_options;
    Observations &m_seen;
    qint64 m_beganAt;
    qint64 m_quietSince = 0;
    std::vector<Segment> m_idle; // came unasked and is not taken apart yet
    TraceSink m_trace;
    std::function<void(const QString &)> m_progress;
    std::function<void(const QString &)> m_announce;
};
