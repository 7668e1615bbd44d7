#pragma once

#include "kit/link/scripted_channel.h"
#include "kit/subject/difference.h"
#include "kit/subject/exchange.h"
#include "kit/subject/sample.h"

namespace kit
{

/// What came of one command.
struct Outcome {
    bool hasError;   ///< what the driver said afterwards
    bool isWritten;  ///< what write() returned
    QByteArray data; ///< what read() returned
    QString text;    ///< the driver's last error, whether there was one or not
    QString thrown;  ///< what was thrown; empty when nothing was
    qint64 begin;    ///< on the clock of SkippedTime
    qint64 end;      ///< \copybrief begin
    ScriptedChannel::Calls calls;
};

/// As the host sees it: a read without an error, a write that answered true.
bool hasSucceeded(const Sample &sample, const Outcome &outcome);
int countOf(ScriptedChannel::Operation operation, const ScriptedChannel::Calls &calls);
inline int requestsOf(const Outcome &outcome)
{
    return countOf(ScriptedChannel::WriteData, outcome.calls);
}
/// The exchanges that these calls made.
Exchanges exchangesOf(const ScriptedChannel::Calls &calls);

/// "success with 34 12", "failure: PLC no response", "threw std::bad_alloc".
QString textOf(const Sample &sample, const Outcome &outcome);
/// The calls that act on the channel, a line each; the middle of a long list is left out.
QString framesText(const ScriptedChannel::Calls &calls);
/// What is wrong with an outcome. Without \a happened it is the outcome as it stands.
Finding findingOf(const Sample &sample, const Outcome &outcome, const QString &expected,
                  const QString &happened = QString());
/// What is wrong apart from any command.
Finding findingOf(const QString &expected, const QString &happened);

} // namespace kit
