// What a channel does with what comes: finds the reply and hands it over.

#include "desk/channel/line_channel.h"

#include "desk/wire/rtu_frame.h"

#include <algorithm>

int LineChannel::readData(char *buffer, int maxLength)
{
    if (m_isWithheld)
        return 0;
    // The time of the rest begins with the last byte before it, however long the whole reply was waited for.
    const bool isRest = m_canTell && m_handedAt >= 0;
    const qint64 deadline = deadlineAfter(isRest ? m_handedAt : m_line.now());
    if (m_asked >= 0)
        awaitReply(deadline);
    while (m_stream.size() < maxLength && receive(deadline)) {
    }
    return handOver(buffer, maxLength);
}

bool LineChannel::receive(qint64 deadline)
{
    const QByteArray bytes = m_line.receive(deadline);
    m_stream.add(bytes, m_line.now());
    return !bytes.isEmpty() && m_stream.size() <= MaxUnasked;
}

void LineChannel::awaitReply(qint64 deadline)
{
    ReplyFinder::Verdict verdict = m_finder.search(m_stream.bytes());
    while (verdict == ReplyFinder::NotYet && receive(deadline))
        verdict = m_finder.search(m_stream.bytes());
    if (verdict == ReplyFinder::NotYet)
        giveUpReply();
    else
        takeReply(verdict);
}

void LineChannel::takeReply(ReplyFinder::Verdict verdict)
{
    if (verdict == ReplyFinder::Answer && !m_finder.mayReplyEqualRequest())
        m_isEchoing = false;
    const QList<SkippedPart> parts = m_finder.parts();
    for (int i = 0; i < parts.size(); ++i)
        skip(parts.at(i), m_stream.take(parts.at(i).size));
    m_settling.setEchoing(m_isEchoing);
    if (verdict == ReplyFinder::Answer) {
        m_settling.noteReply(m_asked);
        noteAnswer();
    } else {
        m_settling.noteLoss(m_asked, m_line.now());
    }
    m_asked = -1;
}

// What has come is handed over in place of the reply, from where one begins, if any does; but nothing that
// could pass for it.
void LineChannel::giveUpReply()
{
    m_finder.giveUp(m_stream.bytes());
    const bool isCut = m_finder.replyStart() >= 0;
    QByteArray kept;
    const QList<SkippedPart> parts = m_finder.parts();
    for (int i = 0; i < parts.size(); ++i) {
        const QByteArray bytes = m_stream.take(parts.at(i).size);
        m_isEchoing = m_isEchoing || parts.at(i).kind == SkippedPart::RequestCopy;
        if (isCut || m_finder.mayPassForReply(parts.at(i).kind)) {
            skip(parts.at(i), bytes);
        } else {
            kept += bytes;
            if (parts.at(i).kind != SkippedPart::Noise)
                m_settling.noteFrame(bytes, m_line.now());
        }
    }
    m_stream.add(kept, m_line.now());
    m_settling.setEchoing(m_isEchoing);
    endExchange();
}

void LineChannel::skip(const SkippedPart &part, const QByteArray &bytes)
{
    switch (part.kind) {
    case SkippedPart::Noise:
        m_strays.noiseBytes += static_cast<quint64>(bytes.size());
        notify(ChannelEvent::SkippedNoise, bytes);
        break;
    case SkippedPart::RequestCopy:
        ++m_strays.requestCopies;
        m_isEchoing = true;
        notify(ChannelEvent::SkippedCopy, bytes);
        break;
    case SkippedPart::OtherFrame:
    case SkippedPart::OtherConfirmation: noteFrame(bytes, ChannelEvent::SkippedFrame); break;
    }
}

int LineChannel::handOver(char *buffer, int maxLength)
{
    const int size = qBound(0, maxLength, m_stream.size());
    if (size > 0)
        m_handedAt = m_stream.arrivalOf(size - 1);
    const QByteArray bytes = m_stream.take(size);
    std::copy(bytes.constData(), bytes.constData() + size, buffer);
    if (size > 0)
        notify(ChannelEvent::Received, bytes);
    if (size < maxLength)
        noticeEnd();
    return size;
}
