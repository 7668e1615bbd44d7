#pragma once

#include <QByteArray>
#include <QString>

/// Splits an address text such as "HR100", "FN5DO12" or "HR7.3" into area, zero-based offset and bit.
///
/// \a area is appended to, letters in their case; \a offset is the one-based number minus one, modulo 65536,
/// and 65535 when the text has no number where one should be; \a bit is written only when a "." follows,
/// modulo 256. No text is refused: from offset 65535 on nothing longer than one register or bit is in range,
/// but byte reads of bit areas go on at 0.
void ModbusRTUSlaveParseAddress(const QString &text, QByteArray &area, unsigned short &offset,
                                unsigned char &bit);

/// Whether the area begins with \a prefix, in any case.
inline bool areaStartsWith(const QByteArray &area, const char *prefix)
{
    return qstrnicmp(area.constData(), prefix, qstrlen(prefix)) == 0;
}
/// Whether the area is \a name, in any case.
bool areaIs(const QByteArray &area, const char *name);

/// "HR" and "FN6HR": holding registers; every other area of registers is read as input registers.
bool isHoldingRegisterArea(const QByteArray &area);
/// "DO" and "FN5DO": coils; every other area of bits is read as discrete inputs.
bool isCoilArea(const QByteArray &area);

/// Whether double words at this address travel with their high-order word first: the text has "SW" in it.
bool hasHighWordFirst(const QString &address);
