#pragma once

#include "tests/doubles/quick_channel.h"

#include <QByteArray>

#include <string>
#include <vector>

/// What a command to station 1 has to come to when the slave serves everything and all its items are 0,
/// worked out from the protocol ("MODBUS Application Protocol V1.1b3", 6) and the limits, without any of the
/// driver's code. Byte reads of bit areas are not among them, since they depend on the project.
struct ExpectedRequests {
    /// Empty when the command is carried out.
    std::string error;
    /// What is sent, also before an error.
    std::vector<QuickChannel::Frame> frames;
    /// Of what a read returns.
    int dataSize;
    /// What a write returns.
    bool isWritten;
};

struct ExpectedArea {
    const char *name;
    int readFunction;
    bool isBits;
    int writeFunction; ///< 0 where nothing is written
};

struct ExpectedKind {
    int dataType;
    const char *item;         ///< in texts of refusals
    const char *readDetails;  ///< null where a text has none
    const char *writeDetails; ///< null where a text has none
};

extern const ExpectedArea ExpectedAreas[6];
extern const ExpectedKind ExpectedKinds[6];

bool isOfBits(const ExpectedKind &kind);
bool isOfBytes(const ExpectedKind &kind);
/// The most items of the kind in one command.
int limitOf(const ExpectedArea &area, const ExpectedKind &kind, bool isWrite);

/// Fills \a expected, whose memory is used again.
/// @{
void expectRead(const ExpectedArea &area, const ExpectedKind &kind, int offset, int count,
                ExpectedRequests &expected);
/// \a data has as many bytes as any command takes.
void expectWrite(const ExpectedArea &area, const ExpectedKind &kind, int offset, int count,
                 const QByteArray &data, ExpectedRequests &expected);
/// @}
