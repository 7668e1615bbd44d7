#include "desk/doctor/observing/examiner.h"

#include "desk/wire/rtu_frame.h"

#include <algorithm>

namespace
{

const qint64 Millisecond = 1000;
const qint64 Second = 1000 * Millisecond;
// What a serial line brings for one frame comes without a longer gap, also through slow gateways.
const qint64 RestOfFrame = Second;
const qint64 EndOfBurst = 100 * Millisecond;
const qint64 AtOnce = 150 * Millisecond;

} // namespace

Examiner::Examiner(Line &line, const DoctorOptions &options, Observations &seen)
    : m_line(line), m_options(options), m_seen(seen), m_beganAt(line.now())
{
    m_seen.station = options.target.station;
}

qint64 Examiner::longWait() const
{
    return std::clamp<qint64>(qint64(2) * m_options.exchange.timeout * Millisecond, 6 * Second, 8 * Second);
}

qint64 Examiner::patientWait() const
{
    return std::clamp(m_options.longestTime - now(), usualWait(), longWait());
}

qint64 Examiner::usualWait() const
{
    qint64 longest = 0;
    for (const Asked *one : m_seen.timed())
        longest = std::max(longest, one->latency());
    return std::clamp(2 * longest + Second / 2, Second, longWait());
}

bool Examiner::hasTimeFor(qint64 time)
{
    if (isCancelled() || now() + time <= m_options.longestTime)
        return !isCancelled();
    m_seen.isOutOfTime = true;
    return false;
}

bool Examiner::tryToConnect()
{
    Connection attempt;
    attempt.beganAt = now();
    const bool isOpen = m_line.open(deadlineIn(m_options.exchange.connectTimeout * Millisecond));
    if (isOpen)
        attempt.openedAt = now();
    else
        attempt.error = m_line.errorString();
    m_quietSince = now();
    // Of what was not waited for to the end nothing is known.
    if (isOpen || !isCancelled())
        m_seen.connections.push_back(attempt);
    traceText(isOpen ? QStringLiteral("connected") : attempt.error);
    return isOpen;
}

bool Examiner::connect()
{
    if (isConnected())
        return true;
    noteEnd();
    for (const qint64 pause : {qint64(0), Second, 3 * Second}) {
        if (pause > 0 && !hasTimeFor(pause))
            return false;
        m_line.pause(deadlineIn(pause));
        if (!tryToConnect())
            continue;
        listen(AtOnce);
        if (isConnected())
            return true;
    }
    return false;
}

void Examiner::disconnect()
{
    flushIdle();
    noteEnd();
    m_line.close();
}

void Examiner::listen(qint64 time)
{
    const qint64 until = deadlineIn(time);
    const qint64 from = now();
    while (m_line.state() != LineState::Closed && m_line.now() < until && !isCancelled()) {
        const QByteArray bytes = m_line.receive(std::min(until, deadlineIn(EndOfBurst)));
        noteIdle(bytes);
        if (bytes.isEmpty() && m_line.state() != LineState::Open)
            break;
    }
    flushIdle();
    noteEnd();
    m_seen.listened += now() - from;
}

void Examiner::rest(qint64 until)
{
    while (m_line.state() == LineState::Open && now() < until && !isCancelled())
        noteIdle(m_line.receive(m_beganAt + until));
}

Asked Examiner::ask(Purpose purpose, const QByteArray &request, qint64 wait, qint64 pause)
{
    Asked asked;
    asked.purpose = purpose;
    asked.request = request;
    asked.wait = wait;
    asked.result = AskResult::Unsent;
    if (connect()) {
        rest(m_quietSince + std::max(pause, m_seen.pauseNeeded));
        noteIdle(m_line.receive(m_line.now()));
        flushIdle();
        asked.connection = static_cast<int>(m_seen.connections.size()) - 1;
        if (!isCancelled() && send(asked))
            takeReply(asked);
        noteEnd();
    }
    if (isCancelled() && !asked.isAnswer())
        forgetParts();
    else
        m_seen.asked.push_back(asked);
    return asked;
}

Asked Examiner::askPatiently(Purpose purpose, const QByteArray &request)
{
    const int tries = 3;
    for (int i = 1; i < tries && hasTimeFor(usualWait()); ++i) {
        Asked asked = ask(purpose, request, usualWait());
        if (asked.isAnswer())
            return asked;
    }
    return ask(purpose, request, usualWait());
}

Asked Examiner::say(const QByteArray &bytes, qint64 wait)
{
    return ask(Purpose::Service, bytes, wait);
}

bool Examiner::send(Asked &asked)
{
    asked.sentAt = now();
    asked.rest = asked.sentAt - m_quietSince;
    asked.result = AskResult::Ended;
    connection().wasAsked = true;
    trace(FrameDirection::Sent, asked.request);
    const int size = int(asked.request.size());
    const int sent = m_line.send(asked.request.constData(), size, deadlineIn(asked.wait));
    m_quietSince = now();
    return sent == size;
}

// When there is no more to wait for; the largest number where there is.
qint64 Examiner::enoughAt(const Asked &asked, ReplyFinder::Verdict verdict) const
{
    const QByteArray received = asked.received();
    const int expected = replySizeFor(asked.request);
    const int slack = 4;
    const QByteArray rest =
        received.startsWith(asked.request) ? received.mid(asked.request.size()) : received;
    const bool isLikeReply = rest.size() > 1 && rest.left(2) == asked.request.left(2);
    const bool isPart = expected > 2 * slack && rest.size() >= expected - slack;
    if (asked.segments.empty() ||
        (verdict == ReplyFinder::NotYet && expected != SizeUnknown && !isLikeReply && !isPart))
        return asked.sentAt + asked.wait;
    return std::min(asked.sentAt + asked.wait, asked.segments.back().at + RestOfFrame);
}

void Examiner::takeReply(Asked &asked)
{
    ReplyFinder finder(asked.request, m_seen.isEchoing());
    const bool canTell = ReplyFinder::canTell(asked.request);
    ReplyFinder::Verdict verdict = ReplyFinder::NotYet;
    while (!isCancelled()) {
        const QByteArray bytes = m_line.receive(m_beganAt + enoughAt(asked, verdict));
        if (!bytes.isEmpty()) {
            trace(FrameDirection::Received, bytes, asked.request);
            asked.segments.push_back({now(), bytes});
            m_quietSince = now();
            verdict = canTell ? finder.search(asked.received()) : ReplyFinder::NotYet;
        }
        const bool isWhole = verdict == ReplyFinder::Answer || verdict == ReplyFinder::OtherAnswer;
        if (isWhole || bytes.isEmpty())
            break;
    }
    judge(asked, finder, verdict);
}

void Examiner::judge(Asked &asked, ReplyFinder &finder, ReplyFinder::Verdict verdict)
{
    const QByteArray received = asked.received();
    const bool isWhole = verdict == ReplyFinder::Answer || verdict == ReplyFinder::OtherAnswer;
    if (verdict == ReplyFinder::NotYet)
        finder.giveUp(received);
    const int start = finder.replyStart();
    const QList<SkippedPart> &parts = finder.parts();
    if (isWhole) {
        const int size = replySize(received.mid(start));
        noteReply(asked, start, size);
        const bool isRefused = (functionOf(asked.reply) & modbus::ExceptionFlag) != 0;
        asked.result = isRefused                        ? AskResult::Refused
                       : verdict == ReplyFinder::Answer ? AskResult::Answered
                                                        : AskResult::OtherLength;
        if (start + size < received.size())
            m_idle.push_back({now(), received.mid(start + size)});
    } else if (start >= 0) {
        noteReply(asked, start, int(received.size()) - start);
        asked.result = AskResult::Damaged;
    } else if (received.isEmpty()) {
        asked.result = m_line.state() == LineState::Open ? AskResult::Silent : AskResult::Ended;
    } else {
        asked.result = AskResult::Noise;
    }
    if (asked.purpose != Purpose::Service)
        noteParts(asked, parts);
    if (asked.result == AskResult::Noise && received == asked.request)
        asked.result = AskResult::Echo;
}

void Examiner::noteReply(Asked &asked, int start, int size) const
{
    asked.reply = asked.received().mid(start, size);
    int position = 0;
    for (const Segment &segment : asked.segments) {
        const int end = position + int(segment.bytes.size());
        if (end > start && position < start + size) {
            if (asked.firstAt < 0)
                asked.firstAt = segment.at;
            else
                asked.longestGap = std::max(asked.longestGap, segment.at - asked.repliedAt);
            asked.repliedAt = segment.at;
        }
        position = end;
    }
}
