#include "desk/channel/frame_scan.h"
#include "desk/doctor/observing/examiner.h"
#include "desk/wire/frame_text.h"
#include "desk/wire/rtu_frame.h"

#include <algorithm>

// What comes and answers nothing: the part of an examiner that takes it apart.

namespace
{

const qint64 BurstGap = 100000;
// A gateway that has held a reply back for longer is not known.
const qint64 LatestReply = 20000000;

// Whether another station replies in the way that was asked for.
bool isReplyOfOther(const Stray &stray, const Asked &asked)
{
    return stray.kind == SkippedPart::OtherFrame && replySize(stray.bytes) == stray.bytes.size() &&
           (functionOf(stray.bytes) & modbus::MaxFunction) == asked.function();
}

qint64 arrivalOf(const std::vector<Segment> &segments, int index)
{
    qint64 at = 0;
    int begin = 0;
    for (const Segment &segment : segments) {
        if (begin <= index)
            at = segment.at;
        begin += int(segment.bytes.size());
    }
    return at;
}

} // namespace

// Where nothing but replies to earlier requests came, nothing came to this one.
void Examiner::noteParts(Asked &asked, const QList<SkippedPart> &parts)
{
    const QByteArray received = asked.received();
    bool isAllLate = !parts.isEmpty();
    for (const SkippedPart &part : parts) {
        Stray stray;
        stray.at = arrivalOf(asked.segments, part.start);
        stray.connection = asked.connection;
        stray.asked = static_cast<int>(m_seen.asked.size());
        stray.kind = part.kind;
        stray.bytes = received.mid(part.start, part.size);
        asked.isEchoed = asked.isEchoed || part.kind == SkippedPart::RequestCopy;
        if (part.kind == SkippedPart::OtherFrame && isLateReply(stray))
            continue;
        isAllLate = false;
        if (part.kind != SkippedPart::RequestCopy)
            noteStray(stray);
        if (asked.result == AskResult::Noise && isReplyOfOther(stray, asked)) {
            asked.result = AskResult::OtherStation;
            asked.reply = stray.bytes;
        }
    }
    if (asked.result == AskResult::Noise && isAllLate)
        asked.result = AskResult::Silent;
}

// Those of a request that is not written down.
void Examiner::forgetParts()
{
    const int next = static_cast<int>(m_seen.asked.size());
    std::vector<Stray> &strays = m_seen.strays;
    strays.erase(
        std::remove_if(strays.begin(), strays.end(), [next](const Stray &one) { return one.asked >= next; }),
        strays.end());
}

void Examiner::noteIdle(const QByteArray &bytes)
{
    if (!m_idle.empty() && now() - m_idle.back().at > BurstGap)
        flushIdle();
    if (bytes.isEmpty())
        return;
    trace(FrameDirection::Dropped, bytes);
    m_idle.push_back({now(), bytes});
    m_quietSince = now();
}

void Examiner::flushIdle()
{
    if (m_idle.empty())
        return;
    QByteArray stream;
    for (const Segment &segment : m_idle)
        stream += segment.bytes;
    Stray stray;
    stray.at = m_idle.front().at;
    stray.connection = static_cast<int>(m_seen.connections.size()) - 1;
    m_idle.clear();
    QByteArray noise;
    const QList<QByteArray> frames = takeFrames(stream, noise);
    for (const QByteArray &frame : frames) {
        stray.kind = SkippedPart::OtherFrame;
        stray.bytes = frame;
        if (!isLateReply(stray))
            noteStray(stray);
    }
    stray.kind = SkippedPart::Noise;
    stray.bytes = noise + stream;
    if (!stray.bytes.isEmpty())
        noteStray(stray);
}

void Examiner::noteStray(Stray stray)
{
    const Connection &itsConnection = m_seen.connections[static_cast<size_t>(stray.connection)];
    const bool isSecond = std::any_of(m_seen.strays.begin(), m_seen.strays.end(),
                                      [&](const Stray &one) { return one.connection == stray.connection; });
    stray.isFirst = !isSecond && !itsConnection.wasAsked;
    m_seen.strays.push_back(stray);
}

// A reply that nobody waited for any more belongs to the request that it answers.
bool Examiner::isLateReply(const Stray &stray)
{
    for (auto one = m_seen.asked.rbegin(); one != m_seen.asked.rend(); ++one) {
        const bool isItsReply = stray.bytes.left(1) == one->request.left(1) &&
                                (functionOf(stray.bytes) & modbus::MaxFunction) == one->function() &&
                                (stray.bytes.size() == replySizeFor(one->request) ||
                                 stray.bytes.size() == modbus::ExceptionReplySize);
        if (one->result != AskResult::Silent || !isItsReply || stray.at - one->sentAt > LatestReply)
            continue;
        one->reply = stray.bytes;
        one->repliedAt = stray.at;
        one->isLate = true;
        const bool isRefused = (functionOf(stray.bytes) & modbus::ExceptionFlag) != 0;
        one->result = isRefused ? AskResult::Refused : AskResult::Answered;
        return true;
    }
    return false;
}

void Examiner::noteEnd()
{
    if (m_seen.connections.empty())
        return;
    Connection &last = connection();
    const LineState state = m_line.state();
    if (last.openedAt < 0 || last.endedAt >= 0 || state == LineState::Open || state == LineState::Closed)
        return;
    last.endedAt = now();
    last.isReset = state == LineState::ResetByOther;
    last.quietSince = m_quietSince;
    traceText(last.isReset ? QStringLiteral("connection reset by the other side")
                           : QStringLiteral("connection closed by the other side"));
}

void Examiner::showProgress(const QString &text) const
{
    if (m_progress)
        m_progress(text);
}

void Examiner::announce(const QString &text) const
{
    if (m_announce)
        m_announce(text);
}

void Examiner::trace(FrameDirection direction, const QByteArray &bytes, const QByteArray &request) const
{
    if (!m_trace)
        return;
    const bool isSent = direction == FrameDirection::Sent;
    const QString meaning =
        hasGoodCrc(bytes) ? describeFrame(isSent ? FrameRole::Request : FrameRole::Reply, bytes, request)
                          : QStringLiteral("no frame");
    m_trace(traceLine(QDateTime::currentDateTime(), direction, bytes, meaning));
}

void Examiner::traceText(const QString &text) const
{
    if (m_trace)
        m_trace(traceEvent(QDateTime::currentDateTime(), text));
}
