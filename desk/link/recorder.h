#pragma once

#include "desk/channel/channel_event.h"
#include "desk/result.h"
#include "kit/subject/transcript.h"

#include <QFile>

#include <functional>

/// Keeps commands with their requests and replies, and writes them to a file that driver-conformance plays
/// back.
class Recorder
{
public:
    /// Nothing is kept when \a path is empty.
    Recorder(const QString &path, const QString &device, int retries);

    bool isRecording() const { return !m_file.fileName().isEmpty(); }
    /// Makes the file, so that it shows before anything is sent when that fails.
    Result<> open();
    void add(const kit::Recording &recording) { m_transcript.recordings.push_back(recording); }
    /// Writes what was kept.
    Result<> write();

private:
    Error error() const;

    QFile m_file;
    kit::Transcript m_transcript;
};

/// Takes a command once it is over.
using RecordSink = std::function<void(const kit::Recording &recording)>;

/// The exchanges of one command, as the driver sees them: what the channel held back is a request without a
/// reply.
class RecordedExchanges
{
public:
    void begin() { m_exchanges.clear(); }
    void add(ChannelEvent event, const QByteArray &bytes);
    /// The command as it is recorded. \a failure is the driver's text, null when the command succeeded.
    kit::Recording recording(const kit::Sample &sample, const QString &failure) const;

private:
    kit::Exchanges m_exchanges;
};
