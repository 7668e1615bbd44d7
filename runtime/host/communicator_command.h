#pragma once

#include <QString>

/// One transfer as the host asks for it. The driver only reads it.
struct CommunicatorCommand {
    /// Item kind: 0 bit, 1 byte, 2 word (16 bits), 3 double word (32 bits), 4 eight-byte item, 5 block of
    /// bytes, 6 bit of a second kind; drivers/tools/command_data.h has names for them.
    int dataType = 0;
    /// Number of items, in units of the item kind.
    int count = 0;
    /// Address text of the first item: area name, one-based decimal number and, for bits in registers, "."
    /// and a bit number counted from the least significant bit: "HR100", "FN5DO12", "HR7.3".
    QString address;
};
