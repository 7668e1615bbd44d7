#include "desk/link/recorder.h"

Recorder::Recorder(const QString &path, const QString &device, int retries) : m_file(path)
{
    m_transcript.device = device;
    m_transcript.retries = retries;
}

Result<> Recorder::open()
{
    if (!isRecording() || m_file.open(QIODevice::WriteOnly))
        return {};
    return error();
}

Result<> Recorder::write()
{
    if (!isRecording())
        return {};
    const QByteArray text = kit::transcriptText(m_transcript);
    if (m_file.write(text) != text.size() || !m_file.flush())
        return error();
    return {};
}

Error Recorder::error() const
{
    return {QStringLiteral("--record %1: %2").arg(m_file.fileName(), m_file.errorString())};
}

void RecordedExchanges::add(ChannelEvent event, const QByteArray &bytes)
{
    if (event == ChannelEvent::Sent || event == ChannelEvent::Withheld)
        m_exchanges.push_back({bytes, {}, 0});
    if (event == ChannelEvent::Received && !m_exchanges.empty())
        m_exchanges.back().reply += bytes;
}

kit::Recording RecordedExchanges::recording(const kit::Sample &sample, const QString &failure) const
{
    return {sample, m_exchanges, !failure.isNull(), failure};
}
