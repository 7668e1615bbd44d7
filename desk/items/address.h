#pragma once

#include "desk/result.h"
#include "desk/wire/protocol.h"

/// An address as people write it, "HR100", "2-HR100", "HR7.3" or "FN5DO12", taken apart. "SW" after the area
/// or at the end marks double words with the high-order word first.
struct Address {
    int station = -1; ///< -1 when the text names none
    QString areaName; ///< in upper case, without "SW"
    Area area = Area::HoldingRegisters;
    int number = 0; ///< counts from 1, up to 65536
    int bit = -1;   ///< bit of a register; -1 when the text names none
    bool highWordFirst = false;

    bool isBitArea() const { return ::isBitArea(area); }
    int wireOffset() const { return number - 1; }
    /// The text without the station: what the driver gets.
    QString text() const;
    /// The text with the station where it names one, "2-HR100": what people wrote, and see.
    QString label() const;
};

/// An address, or a range of them as scans print it: "HR1..5".
struct AddressSpan {
    Address first;
    int last = 0; ///< number of the last one
    bool isRange = false;
};

/// Reads an address or a range of one area. Bits of registers have no ranges.
Result<AddressSpan> parseAddressSpan(const QString &text);

/// Takes \a text apart; the error says what is wrong and what was expected. The driver itself refuses no
/// text: what it does not understand it reads as some input register.
Result<Address> parseAddress(const QString &text);
