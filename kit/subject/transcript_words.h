#pragma once

#include "host/communicator_command.h"

#include <QByteArray>
#include <QString>

namespace kit
{

/// \file
/// The words of a transcript's lines.

/// @{
QString firstWord(const QString &line);
/// What follows the first word, without blanks around it.
QString afterFirstWord(const QString &line);
/// @}

/// Bytes as digits in pairs, with or without blanks between them; false for anything else.
bool parseBytes(const QString &text, QByteArray &bytes);
/// Each byte as a blank and two digits.
QString byteWords(const QByteArray &bytes);

/// The command of "word 2 HR100". Returns what is wrong with the text, empty when nothing is.
QString parseCommand(const QString &text, CommunicatorCommand &command);
/// "word 2 HR100" of a command; kinds without a name as numbers.
QString commandWords(const CommunicatorCommand &command);

} // namespace kit
