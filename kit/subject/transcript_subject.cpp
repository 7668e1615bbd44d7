#include "kit/subject/transcript_subject.h"

namespace kit
{

namespace
{

bool isSameCommand(const Sample &a, const Sample &b)
{
    return a.isWrite == b.isWrite && a.station == b.station && a.command.dataType == b.command.dataType &&
           a.command.count == b.command.count && a.command.address == b.command.address &&
           (!a.isWrite || a.data == b.data);
}

// Of several replies the last: the attempts before it failed.
bool findReply(const Recording &recording, const QByteArray &request, QByteArray &reply)
{
    bool isFound = false;
    for (const Exchange &exchange : recording.exchanges)
        if (exchange.request == request) {
            reply = exchange.reply;
            isFound = true;
        }
    return isFound;
}

} // namespace

Samples TranscriptSubject::samples() const
{
    Samples samples;
    for (const Recording &recording : m_transcript.recordings) {
        bool isNew = !recording.hasFailed && !recording.exchanges.empty();
        for (const Sample &sample : samples)
            isNew = isNew && !isSameCommand(sample, recording.sample);
        if (isNew)
            samples.push_back(recording.sample);
    }
    return samples;
}

// What the present command got, else what any other got for the same request.
QByteArray TranscriptSubject::reply(const QByteArray &request)
{
    QByteArray found;
    if (m_current != nullptr && findReply(*m_current, request, found))
        return found;
    for (const Recording &recording : m_transcript.recordings)
        if (!recording.hasFailed && findReply(recording, request, found))
            break;
    return found;
}

DeviceSetting TranscriptSubject::deviceSetting() const
{
    DeviceSetting setting = Subject::deviceSetting();
    setting.deviceString = m_transcript.device;
    return setting;
}

void TranscriptSubject::begin(const Sample &sample)
{
    m_current = nullptr;
    for (const Recording &recording : m_transcript.recordings)
        if (m_current == nullptr && !recording.hasFailed && isSameCommand(recording.sample, sample))
            m_current = &recording;
}

} // namespace kit
