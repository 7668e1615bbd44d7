#include "kit/subject/transcript.h"

#include "kit/subject/transcript_words.h"

#include <QStringList>

namespace kit
{

namespace
{

// Takes a transcript in, a line at a time.
class Parser
{
public:
    QString addLine(const QString &line);
    QString end();
    const Transcript &transcript() const { return m_transcript; }

private:
    QString beginRecording(bool isWrite, const QString &rest);
    QString addToRecording(const QString &word, const QString &rest);
    QString addSetting(const QString &word, const QString &rest);
    QString finishRecording(const QString &word, const QString &rest);
    QString addRefused(const QString &rest);
    QString addDifference(const QString &rest);
    bool isOpen() const { return m_isOpen; }

    Transcript m_transcript;
    int m_station = 1;
    bool m_isOpen = false;
};

bool isPartOfRecording(const QString &word)
{
    return word == QLatin1String(">") || word == QLatin1String("<") || word == QLatin1String("data");
}

bool isEndOfRecording(const QString &word)
{
    return word == QLatin1String("=") || word == QLatin1String("done") || word == QLatin1String("failed");
}

QString Parser::addLine(const QString &line)
{
    const QString text = line.trimmed();
    if (text.isEmpty() || text.startsWith(QLatin1Char('#')))
        return QString();
    const QString word = firstWord(text);
    const QString rest = afterFirstWord(text);
    if (isPartOfRecording(word) || isEndOfRecording(word)) {
        if (!m_isOpen)
            return QString::fromLatin1("\"%1\" belongs to a command, and none was begun").arg(word);
        return isPartOfRecording(word) ? addToRecording(word, rest) : finishRecording(word, rest);
    }
    if (m_isOpen)
        return QString::fromLatin1("the command before has no end: expected =, done or failed");
    if (word == QLatin1String("read") || word == QLatin1String("write"))
        return beginRecording(word == QLatin1String("write"), rest);
    if (word == QLatin1String("refuse"))
        return addRefused(rest);
    if (word == QLatin1String("difference"))
        return addDifference(rest);
    return addSetting(word, rest);
}

QString Parser::end()
{
    return m_isOpen ? QString::fromLatin1("the last command has no end: expected =, done or failed")
                    : QString();
}

QString Parser::beginRecording(bool isWrite, const QString &rest)
{
    Recording recording = {Sample(), Exchanges(), false, QString()};
    recording.sample.isWrite = isWrite;
    recording.sample.station = m_station;
    QString error = parseCommand(rest, recording.sample.command);
    if (!error.isEmpty())
        return error;
    if (m_transcript.recordings.empty())
        m_transcript.station = m_station;
    m_transcript.recordings.push_back(recording);
    m_isOpen = true;
    return QString();
}

QString Parser::addToRecording(const QString &word, const QString &rest)
{
    Recording &recording = m_transcript.recordings.back();
    QByteArray bytes;
    if (!parseBytes(rest, bytes))
        return QString::fromLatin1("expected pairs of hexadecimal digits after \"%1\"").arg(word);
    if (word == QLatin1String("data"))
        recording.sample.data = bytes;
    else if (word == QLatin1String(">"))
        recording.exchanges.push_back(Exchange{bytes, QByteArray(), 0});
    else if (recording.exchanges.empty())
        return QLatin1String("a reply before any request");
    else
        recording.exchanges.back().reply = bytes;
    return QString();
}

QString Parser::finishRecording(const QString &word, const QString &rest)
{
    Recording &recording = m_transcript.recordings.back();
    m_isOpen = false;
    if (word == QLatin1String("failed")) {
        recording.hasFailed = true;
        recording.text = rest.simplified();
        return QString();
    }
    if (recording.sample.isWrite != (word == QLatin1String("done")))
        return QLatin1String("a read ends with =, a write with done");
    if (!recording.sample.isWrite && !parseBytes(rest, recording.sample.data))
        return QLatin1String("expected pairs of hexadecimal digits after \"=\"");
    return QString();
}

QString Parser::addRefused(const QString &rest)
{
    CommunicatorCommand command;
    QString error = parseCommand(rest, command);
    if (error.isEmpty())
        m_transcript.refused.push_back(command);
    return error;
}

QString Parser::addDifference(const QString &rest)
{
    const QString reason = afterFirstWord(rest);
    if (reason.isEmpty())
        return QLatin1String("expected the id of a check and a reason");
    m_transcript.differences.push_back(Difference{firstWord(rest), reason, nullptr});
    return QString();
}

QString Parser::addSetting(const QString &word, const QString &rest)
{
    bool isNumber = true;
    if (word == QLatin1String("device"))
        m_transcript.device = rest;
    else if (word == QLatin1String("station"))
        m_station = rest.toInt(&isNumber);
    else if (word == QLatin1String("retries"))
        m_transcript.retries = rest.toInt(&isNumber);
    else
        return QString::fromLatin1("nobody knows \"%1\"").arg(word);
    return isNumber ? QString() : QString::fromLatin1("expected a number after \"%1\"").arg(word);
}

QString recordingText(const Recording &recording)
{
    const Sample &sample = recording.sample;
    QString text = QLatin1String(sample.isWrite ? "write " : "read ") + commandWords(sample.command);
    text += QLatin1Char('\n');
    if (sample.isWrite)
        text += QLatin1String("data") + byteWords(sample.data) + QLatin1Char('\n');
    for (const Exchange &exchange : recording.exchanges) {
        text += QLatin1Char('>') + byteWords(exchange.request) + QLatin1Char('\n');
        if (!exchange.reply.isEmpty())
            text += QLatin1Char('<') + byteWords(exchange.reply) + QLatin1Char('\n');
    }
    if (recording.hasFailed)
        return text + QLatin1String("failed ") + recording.text.simplified() + QLatin1Char('\n');
    if (sample.isWrite)
        return text + QLatin1String("done\n");
    return text + QLatin1Char('=') + byteWords(sample.data) + QLatin1Char('\n');
}

} // namespace

Transcript::Transcript() : device(QLatin1String("ETHERNET")), station(1), retries(0) {}

Transcript parsedTranscript(const QByteArray &text, QString &error)
{
    Parser parser;
    const QStringList lines = QString::fromUtf8(text.constData(), text.size()).split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        const QString wrong = parser.addLine(lines.at(i));
        if (!wrong.isEmpty()) {
            error = QString::fromLatin1("line %1: %2").arg(i + 1).arg(wrong);
            return parser.transcript();
        }
    }
    error = parser.end();
    return parser.transcript();
}

QByteArray transcriptText(const Transcript &transcript)
{
    QString text = QLatin1String("device ") + transcript.device + QLatin1Char('\n');
    text += QString::fromLatin1("retries %1\n").arg(transcript.retries);
    int station = -1;
    for (const Recording &recording : transcript.recordings) {
        if (recording.sample.station != station)
            text += QString::fromLatin1("station %1\n").arg(recording.sample.station);
        station = recording.sample.station;
        text += QLatin1Char('\n') + recordingText(recording);
    }
    if (!transcript.refused.empty() || !transcript.differences.empty())
        text += QLatin1Char('\n');
    for (const CommunicatorCommand &command : transcript.refused)
        text += QLatin1String("refuse ") + commandWords(command) + QLatin1Char('\n');
    for (const Difference &difference : transcript.differences)
        text += QLatin1String("difference ") + difference.check + QLatin1Char(' ') + difference.reason +
                QLatin1Char('\n');
    return text.toUtf8();
}

} // namespace kit
