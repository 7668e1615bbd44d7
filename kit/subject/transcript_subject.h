#pragma once

#include "kit/subject/subject.h"
#include "kit/subject/transcript.h"

namespace kit
{

/// A driver of which a transcript is all that is known: its commands are the samples, its replies the slave.
///
/// Protocols whose requests carry numbers that change cannot be played back out of order; they need a slave
/// that thinks.
class TranscriptSubject : public Subject
{
public:
    /// Keeps a copy of \a transcript.
    explicit TranscriptSubject(const Transcript &transcript) : m_transcript(transcript), m_current(nullptr) {}

    /// The commands that succeeded, each once.
    Samples samples() const override;
    QByteArray reply(const QByteArray &request) override;
    bool answersEverything() const override { return false; }
    std::vector<CommunicatorCommand> refused() const override { return m_transcript.refused; }
    Differences differences() const override { return m_transcript.differences; }
    int stationId() const override { return m_transcript.station; }
    DeviceSetting deviceSetting() const override;
    void begin(const Sample &sample) override;

private:
    Transcript m_transcript;
    const Recording *m_current;
};

} // namespace kit
