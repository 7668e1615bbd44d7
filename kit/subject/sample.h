#pragma once

#include "kit/subject/command.h"

#include <QByteArray>

#include <vector>

namespace kit
{

/// One command that the driver can do.
struct Sample {
    CommunicatorCommand command; ///< what the host asks for
    bool isWrite;                ///< else it is a read
    /// What a write hands over, and what a read has to return: null when any bytes will do.
    QByteArray data;
    /// The station that it is for; negative for the subject's.
    int station;
};
using Samples = std::vector<Sample>;

/// \a dataType is one of ItemKind.
/// @{
Sample readOf(int dataType, const QString &address, int count, const QByteArray &expected = QByteArray());
Sample writeOf(int dataType, const QString &address, int count, const QByteArray &data);
/// @}

/// As people say it: "read 2 words at D100", "write 1 word at D1: 34 12".
QString textOf(const Sample &sample);
QString textOf(const CommunicatorCommand &command);

/// byteText(), of very many only the first.
QString hexText(const QByteArray &bytes);

} // namespace kit
