#include "desk/channel/reply_finder.h"

#include "desk/channel/frame_scan.h"
#include "desk/wire/rtu_frame.h"
#include "drivers/qt/qt_lines.h"

namespace
{

bool contains(const QList<SkippedPart> &parts, SkippedPart::Kind kind)
{
    for (int i = 0; i < parts.size(); ++i) {
        if (parts.at(i).kind == kind)
            return true;
    }
    return false;
}

bool isException(const QByteArray &stream, int start)
{
    return (byteAt(stream, start + 1) & modbus::ExceptionFlag) != 0;
}

void append(QList<SkippedPart> &parts, SkippedPart::Kind kind, int start, int size)
{
    if (kind == SkippedPart::Noise && !parts.isEmpty() && parts.last().kind == SkippedPart::Noise) {
        parts.last().size += size;
        return;
    }
    const SkippedPart part = {kind, start, size};
    parts.append(part);
}

} // namespace

bool ReplyFinder::canTell(const QByteArray &request)
{
    return hasGoodCrc(request) && byteAt(request, 0) != modbus::BroadcastStation &&
           replySizeFor(request) != SizeUnknown;
}

ReplyFinder::ReplyFinder(const QByteArray &request, bool isEchoing)
    : m_request(request),
      m_replySize(replySizeFor(request)),
      m_isEchoing(isEchoing),
      m_next(0),
      m_replyStart(-1)
{
}

ReplyFinder::Verdict ReplyFinder::search(const QByteArray &stream)
{
    m_parts = m_decided;
    bool isDecided = true;
    for (int start = m_next; start < stream.size();) {
        const int size = frameSizeAt(stream, start);
        if (size == PerhapsFrame && isDecided) {
            isDecided = false;
            m_decided = m_parts;
            m_next = start;
        }
        const QByteArray frame = size > 0 ? stream.mid(start, size) : QByteArray();
        if (isReply(frame) && !isCopy(frame, m_parts)) {
            m_replyStart = start;
            return frame.size() == m_replySize || isException(stream, start) ? Answer : OtherAnswer;
        }
        append(m_parts, size > 0 ? kindOf(frame) : SkippedPart::Noise, start, size > 0 ? size : 1);
        start += size > 0 ? size : 1;
    }
    if (isDecided) {
        m_decided = m_parts;
        m_next = sizeOf(stream);
    }
    m_replyStart = damagedReplyStart(stream);
    cutPartsAt(m_replyStart);
    return m_replyStart < 0 ? NotYet : Damaged;
}

bool ReplyFinder::mayPassForReply(SkippedPart::Kind kind) const
{
    const bool isCopyWhole = m_request.size() >= m_replySize && hasGoodCrc(m_request.left(m_replySize));
    return kind == SkippedPart::OtherConfirmation || (kind == SkippedPart::RequestCopy && isCopyWhole);
}

bool ReplyFinder::mayReplyEqualRequest() const
{
    return modbus::isWriteSingle(functionOf(m_request)) || functionOf(m_request) == modbus::Diagnostics;
}

// Confirmations of other writes are none of this one; a request of another master to the same station is no
// reply, though its length may be that of one.
bool ReplyFinder::isReply(const QByteArray &frame) const
{
    if (frame.isEmpty() || frame.at(0) != m_request.at(0))
        return false;
    const int function = functionOf(m_request);
    if (functionOf(frame) == (function | modbus::ExceptionFlag))
        return true;
    if (functionOf(frame) != function || replySize(frame) != frame.size())
        return false;
    const int addressEnd = 4;
    const int quantityEnd = 6;
    if (modbus::isWriteSingle(function))
        return frame.left(addressEnd) == m_request.left(addressEnd);
    if (modbus::isWriteMultiple(function))
        return frame.left(quantityEnd) == m_request.left(quantityEnd);
    return function != modbus::Diagnostics || frame == m_request;
}

bool ReplyFinder::isCopy(const QByteArray &frame, const QList<SkippedPart> &parts) const
{
    return frame == m_request &&
           (!mayReplyEqualRequest() || (m_isEchoing && !contains(parts, SkippedPart::RequestCopy)));
}

SkippedPart::Kind ReplyFinder::kindOf(const QByteArray &frame) const
{
    if (frame == m_request)
        return SkippedPart::RequestCopy;
    const int function = functionOf(frame);
    const bool isConfirmation = (modbus::isWriteSingle(function) || modbus::isWriteMultiple(function)) &&
                                frame.left(2) == m_request.left(2);
    return isConfirmation ? SkippedPart::OtherConfirmation : SkippedPart::OtherFrame;
}

bool ReplyFinder::beginsLikeReply(const QByteArray &stream, int start) const
{
    const int function = functionOf(m_request);
    return stream.at(start) == m_request.at(0) && start + 1 < stream.size() &&
           (byteAt(stream, start + 1) & ~modbus::ExceptionFlag) == function;
}

// The first place within the noise that passes the test; -1 for none.
template <typename Test>
int ReplyFinder::findInNoise(Test passes) const
{
    for (int i = 0; i < m_parts.size(); ++i) {
        const SkippedPart &part = m_parts.at(i);
        for (int start = part.start; part.kind == SkippedPart::Noise && start < part.start + part.size;
             ++start) {
            if (passes(start))
                return start;
        }
    }
    return -1;
}

void ReplyFinder::giveUp(const QByteArray &stream)
{
    m_replyStart = findInNoise([&](int start) { return beginsLikeReply(stream, start); });
    cutPartsAt(m_replyStart);
}

int ReplyFinder::damagedReplyStart(const QByteArray &stream) const
{
    return findInNoise([&](int start) {
        if (!beginsLikeReply(stream, start))
            return false;
        const int size = isException(stream, start) ? modbus::ExceptionReplySize : m_replySize;
        // What comes may still turn out to be a copy of the request.
        return start + size <= stream.size() && !m_request.startsWith(stream.mid(start));
    });
}

void ReplyFinder::cutPartsAt(int start)
{
    while (start >= 0 && !m_parts.isEmpty() && m_parts.last().start >= start)
        m_parts.removeLast();
    if (start >= 0 && !m_parts.isEmpty())
        m_parts.last().size = qMin(m_parts.last().size, start - m_parts.last().start);
}
