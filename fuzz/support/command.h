#pragma once

#include "drivers/tools/command_data.h"
#include "fuzz/support/input.h"
#include "fuzz/support/slave_channel.h"
#include "host/communicator_command.h"
#include "host/driver_interface.h"

#include <QByteArray>
#include <QList>

namespace fuzz
{

/// What an area text means.
struct Area {
    const char *text;
    /// Holding registers are read with function 3, coils with 1; all others with 4 and 2.
    bool isHolding;
    bool isCoils;
    /// Bits, also of a kind that cannot be written.
    bool isBits;
};

/// A command taken from an input, with what its address text was made of.
struct Command : CommunicatorCommand {
    const Area *area;
    int offset;
    int bit;
    bool highWordFirst;

    bool isBitKind() const { return dataType == BitItem || dataType == SecondBitItem; }
    bool isByteKind() const { return dataType == ByteItem || dataType == BlockItem; }
    bool isSupported() const { return dataType <= SecondBitItem && dataType != EightByteItem; }
    bool areaIs(const char *name) const { return qstricmp(area->text, name) == 0; }
};

Command takeCommand(Input &input);
/// Station, retries and whether the channel is open.
void takeLink(Input &input, SlaveChannel &channel);

/// What a command has to send when every reply is good, and the text of the refusal that follows, if one
/// does.
struct Plan {
    QList<QByteArray> requests;
    QString refusal;
};

/// "can't read any word from HR5" and the like.
QString refusal(const char *what, const QString &area, int offset);

/// Checks what the driver sent, every close of the channel and the error text against the plan. Returns
/// whether the command had to succeed.
bool checkOutcome(const SlaveChannel &channel, const Plan &plan, DriverInterface &driver,
                  const CommunicatorCommand &command, const char *detailsFormat);
/// The same for a kind of item that the driver does not serve.
void checkUnsupported(const SlaveChannel &channel, DriverInterface &driver,
                      const CommunicatorCommand &command);

} // namespace fuzz
