// What a channel does with a request: throws away what came before, settles the line, sends.

#include "desk/channel/line_channel.h"

#include "desk/channel/frame_scan.h"
#include "desk/wire/rtu_frame.h"
#include "drivers/qt/qt_lines.h"

#include <algorithm>

int LineChannel::writeData(const char *data, int length)
{
    endExchange();
    m_isWithheld = false;
    m_handedAt = -1;
    if (!discardUnasked())
        return -1;
    const QByteArray request(data, length);
    m_canTell = ReplyFinder::canTell(request);
    if (!m_canTell)
        return sendRequest(request);
    const int station = byteAt(request, 0);
    m_askedStations.insert(station);
    if (!settle(station))
        return withhold(request);
    m_asked = station;
    m_finder = ReplyFinder(request, m_isEchoing);
    m_settling.noteRequest(station);
    return sendRequest(request);
}

int LineChannel::sendRequest(const QByteArray &request)
{
    notify(ChannelEvent::Sent, request);
    const int sent = m_line.send(request.constData(), sizeOf(request), deadlineAfter(m_line.now()));
    m_error = m_line.errorString();
    if (sent < request.size())
        noticeEnd();
    return sent;
}

// The driver takes it for silence, and has waited as long.
int LineChannel::withhold(const QByteArray &request)
{
    m_isWithheld = true;
    m_settling.noteWithheld();
    notify(ChannelEvent::Withheld, request);
    return sizeOf(request);
}

bool LineChannel::settle(int station)
{
    if (m_settling.isSettled(station, m_line.now()))
        return true;
    const qint64 deadline = deadlineAfter(m_line.now());
    if (!m_settling.wantsProbe(station) || sendProbe(station))
        awaitSettled(station, deadline);
    return discardUnasked() && m_settling.isSettled(station, m_line.now());
}

bool LineChannel::sendProbe(int station)
{
    const QByteArray probe = m_settling.probe(station, m_line.now());
    notify(ChannelEvent::ProbeSent, probe);
    return m_line.send(probe.constData(), sizeOf(probe), deadlineAfter(m_line.now())) == probe.size();
}

// Whole frames are thrown away until the echo comes, or until the line has been quiet for long enough.
void LineChannel::awaitSettled(int station, qint64 deadline)
{
    QByteArray pending;
    while (!m_settling.isSettled(station, m_line.now()) && m_line.now() < deadline) {
        const qint64 wake = std::min(deadline, m_settling.quietEnd(station));
        const QByteArray bytes = m_line.receive(wake);
        if (bytes.isEmpty() && m_line.now() < wake)
            return;
        pending += bytes;
        noteUnasked(pending);
    }
    noteNoise(pending);
}

bool LineChannel::discardUnasked()
{
    QByteArray unasked = m_stream.takeAll();
    for (QByteArray bytes = m_line.receive(m_line.now()); !bytes.isEmpty();
         bytes = m_line.receive(m_line.now())) {
        unasked += bytes;
        if (unasked.size() > MaxUnasked) {
            m_error = QString::fromLatin1("the other side keeps sending without being asked");
            return false;
        }
    }
    noteUnasked(unasked);
    noteNoise(unasked);
    if (m_line.state() == LineState::Open)
        return true;
    m_error = m_line.errorString();
    noticeEnd();
    return false;
}

// Takes the frames out of the stream, with the noise before them.
void LineChannel::noteUnasked(QByteArray &stream)
{
    QByteArray noise;
    const QList<QByteArray> frames = takeFrames(stream, noise);
    noteNoise(noise);
    for (int i = 0; i < frames.size(); ++i)
        noteFrame(frames.at(i), ChannelEvent::Discarded);
}

void LineChannel::noteNoise(const QByteArray &bytes)
{
    m_strays.noiseBytes += static_cast<quint64>(bytes.size());
    if (!bytes.isEmpty())
        notify(ChannelEvent::Discarded, bytes);
}

// A frame that is no answer to what is waited for.
void LineChannel::noteFrame(const QByteArray &frame, ChannelEvent event)
{
    const int station = byteAt(frame, 0);
    if (m_settling.noteFrame(frame, m_line.now())) {
        noteAnswer();
        notify(ChannelEvent::ProbeAnswered, frame);
        return;
    }
    if (m_askedStations.contains(station)) {
        ++m_strays.lateFrames;
    } else {
        ++m_strays.otherFrames;
        m_strays.lastOtherStation = station;
    }
    notify(event, frame);
}

void LineChannel::noteAnswer()
{
    m_isAnswered = true;
    m_opening.succeed();
}
