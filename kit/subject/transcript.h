#pragma once

#include "kit/subject/difference.h"
#include "kit/subject/exchange.h"
#include "kit/subject/sample.h"

namespace kit
{

/// One command as it was recorded.
struct Recording {
    Sample sample;       ///< the command; of a read with what it returned
    Exchanges exchanges; ///< in their order
    bool hasFailed;      ///< whether the driver reported a failure
    QString text;        ///< of the failure, without line breaks; empty when any will do
};

/// Requests and replies of a driver, from a text file such as `driverhost ... --record FILE` writes. A line a
/// statement; what follows a # is a comment.
///
///     device ETHERNET                    the link's device text
///     station 1                          of the commands that follow
///     retries 0                          of the link
///     read word 2 HR100                  kind, count, address
///     > 01 03 00 63 00 02 34 15          a request
///     < 01 03 04 12 34 56 78 81 07       what the driver read of the reply; no such line: nothing
///     = 34 12 78 56                      what the command returned
///     write word 1 HR100
///     data 34 12                         what is written
///     > ...
///     < ...
///     done                               it was written
///     failed invalid response            instead of = and done: the command failed, with this text, or any
///     refuse word 1 XX1                  a command that the driver must refuse
///     difference staleness.echo why      where the driver differs, and why
///
/// Kinds are bit, byte, word, dword, eight, block, bit2, or a number.
struct Transcript {
    QString device;                           ///< the link's device text
    int station;                              ///< of the first command
    int retries;                              ///< of the link
    std::vector<Recording> recordings;        ///< in their order
    std::vector<CommunicatorCommand> refused; ///< commands that the driver must refuse
    Differences differences;                  ///< without conditions

    /// Of a link with ETHERNET, station 1, without retries.
    Transcript();
};

/// Reads \a text; on failure \a error says what is wrong, with the number of the line, and is empty
/// otherwise.
Transcript parsedTranscript(const QByteArray &text, QString &error);
/// The file's text; parsedTranscript() gives the same transcript again. Conditions of differences are lost.
QByteArray transcriptText(const Transcript &transcript);

} // namespace kit
