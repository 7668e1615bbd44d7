#include "kit/link/outcome.h"

#include <QStringList>

#include <algorithm>

namespace kit
{

namespace
{

// What a protocol of characters says; nothing for bytes that are none.
QString quoted(const QByteArray &bytes)
{
    for (int i = 0; i < bytes.size(); ++i)
        if ((bytes.at(i) < ' ' || bytes.at(i) > '~') && bytes.at(i) != '\r' && bytes.at(i) != '\n')
            return QString();
    QByteArray visible = bytes;
    visible.replace('\r', "\\r").replace('\n', "\\n");
    return bytes.isEmpty()
               ? QString()
               : QLatin1String("  \"") + QString::fromLatin1(visible.constData()) + QLatin1Char('"');
}

QString readText(const ScriptedChannel::Call &call)
{
    const QString bytes = hexText(call.bytes) + quoted(call.bytes);
    if (call.result == call.bytes.size() && call.result == call.length)
        return QString::fromLatin1("< %1").arg(bytes);
    return QString::fromLatin1("< %1  (asked for %2, answered %3)")
        .arg(bytes)
        .arg(call.length)
        .arg(call.result);
}

QString writeText(const ScriptedChannel::Call &call)
{
    const QString bytes = hexText(call.bytes) + quoted(call.bytes);
    if (call.result == call.length)
        return QString::fromLatin1("> %1").arg(bytes);
    return QString::fromLatin1("> %1  (answered %2 of %3)").arg(bytes).arg(call.result).arg(call.length);
}

QString lineOf(const ScriptedChannel::Call &call)
{
    switch (call.operation) {
    case ScriptedChannel::ReadData: return readText(call);
    case ScriptedChannel::WriteData: return writeText(call);
    case ScriptedChannel::Open: return QLatin1String(call.result != 0 ? "- opened" : "- open failed");
    case ScriptedChannel::Close: return QLatin1String("- closed");
    case ScriptedChannel::Idle: return QString::fromLatin1("- operation %1 of the channel").arg(call.length);
    default: return QString();
    }
}

} // namespace

bool hasSucceeded(const Sample &sample, const Outcome &outcome)
{
    if (!outcome.thrown.isEmpty())
        return false;
    return sample.isWrite ? outcome.isWritten : !outcome.hasError;
}

int countOf(ScriptedChannel::Operation operation, const ScriptedChannel::Calls &calls)
{
    return static_cast<int>(
        std::count_if(calls.begin(), calls.end(), [operation](const ScriptedChannel::Call &call) {
            return call.operation == operation;
        }));
}

Exchanges exchangesOf(const ScriptedChannel::Calls &calls)
{
    Exchanges exchanges;
    for (const ScriptedChannel::Call &call : calls) {
        if (call.operation == ScriptedChannel::WriteData)
            exchanges.push_back(Exchange{call.bytes, QByteArray(), 0});
        if (call.operation == ScriptedChannel::ReadData && !exchanges.empty()) {
            exchanges.back().reply += call.bytes;
            ++exchanges.back().reads;
        }
    }
    return exchanges;
}

QString textOf(const Sample &sample, const Outcome &outcome)
{
    if (!outcome.thrown.isEmpty())
        return QLatin1String("threw ") + outcome.thrown;
    if (!hasSucceeded(sample, outcome))
        return QLatin1String("failure: ") + outcome.text;
    return sample.isWrite ? QString(QLatin1String("success"))
                          : QLatin1String("success with ") + hexText(outcome.data);
}

QString framesText(const ScriptedChannel::Calls &calls)
{
    const int longest = 16;
    QStringList lines;
    for (const ScriptedChannel::Call &call : calls) {
        const QString line = lineOf(call);
        if (!line.isEmpty())
            lines.append(line);
    }
    if (lines.size() > longest) {
        const int half = longest / 2;
        const QString gap = QString::fromLatin1("... %1 more ...").arg(lines.size() - longest);
        lines = lines.mid(0, half) + (QStringList() << gap) + lines.mid(lines.size() - half);
    }
    return lines.join(QLatin1String("\n"));
}

Finding findingOf(const Sample &sample, const Outcome &outcome, const QString &expected,
                  const QString &happened)
{
    const Exchanges exchanges = exchangesOf(outcome.calls);
    const Exchange last = exchanges.empty() ? Exchange() : exchanges.back();
    return Finding{textOf(sample), framesText(outcome.calls),
                   expected,       happened.isEmpty() ? textOf(sample, outcome) : happened,
                   sample,         last.request,
                   last.reply};
}

Finding findingOf(const QString &expected, const QString &happened)
{
    Finding finding = Finding();
    finding.expected = expected;
    finding.happened = happened;
    return finding;
}

} // namespace kit
