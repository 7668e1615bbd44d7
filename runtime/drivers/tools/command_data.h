#pragma once

#include "host/communicator_command.h"

#include <QByteArray>

/// \file
/// How much data a command carries, and how many items cover how many others.

/// Item kinds of CommunicatorCommand::dataType.
enum ItemKind : int {
    BitItem = 0,        ///< A bit.
    ByteItem = 1,       ///< 8 bits.
    WordItem = 2,       ///< 16 bits, one register.
    DoubleWordItem = 3, ///< 32 bits.
    EightByteItem = 4,  ///< 64 bits.
    BlockItem = 5,      ///< A byte of a block.
    SecondBitItem = 6   ///< A bit of the second kind.
};

/// Whether the command is of the kind; a bit of the second kind is none of them.
/// @{
bool isBitCommand(const CommunicatorCommand &command);
bool isByteCommand(const CommunicatorCommand &command);
bool isWordCommand(const CommunicatorCommand &command);
bool isDoubleWordCommand(const CommunicatorCommand &command);
bool isBlockCommand(const CommunicatorCommand &command);
/// @}

/// Bit 0 of the first byte; false when there is none.
bool getBitData(const QByteArray &data);

/// Bytes of data that belong to \a command: bits packed eight to a byte (the count taken as unsigned), bytes
/// and blocks 1 each, words 2, double words 4, eight-byte items 8; 0 for an unknown kind. A product that no
/// int holds gives the maximum or the minimum of an int.
int GetSafeDataLen(const CommunicatorCommand &command);
/// \a data cut to the length of \a command or padded with zero bytes to it. Check a count that comes from
/// outside first: the padding is made whatever its length.
QByteArray ToSafeData(const CommunicatorCommand &command, const QByteArray &data);

/// How many items cover \a numBits bits of which the first is bit \a startBit of the first item, rounded up.
/// The sum is taken modulo 2^32; (15, 2) touches 2 words, (0, 0) none.
/// @{
unsigned int NumOfBitsToNumOfBytes(unsigned int startBit, unsigned int numBits);
unsigned int NumOfBitsToNumOfWords(unsigned int startBit, unsigned int numBits);
unsigned int NumOfBitsToNumOfDWords(unsigned int startBit, unsigned int numBits);
/// @}

/// How many items of 2, 4 or 8 bytes cover \a numBytes bytes, rounded up.
/// @{
unsigned int NumOfBytesToNumOfWords(unsigned int numBytes);
unsigned int NumOfBytesToNumOfDWords(unsigned int numBytes);
unsigned int NumOfBytesToNumOfQuadWords(unsigned int numBytes);
/// @}
