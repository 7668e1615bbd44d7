#pragma once

/// \file
/// Checksums and CRCs of serial protocols.

/// The sum of \a length bytes modulo 256; 0 when \a length < 1.
unsigned char UInt8CheckSum(const unsigned char *data, int length);
/// The sum of \a length bytes (not of 16-bit words) modulo 65536; 0 when \a length < 1.
unsigned short UShortCheckSum(const unsigned char *data, int length);
/// The exclusive-or of \a length bytes; 0 when \a length < 1.
unsigned char XorUInt8CheckSum(const unsigned char *data, int length);
/// CRC-16/ARC of \a length bytes: update_crc_16() over each of them, from 0. 0 when \a length < 1; 0xBB3D for
/// the digits "123456789".
unsigned short CRC16Calculate(const unsigned char *data, int length);

/// \name CRC steps
/// Each takes the running value \a crc over the next byte \a c. The value to start with and a complement at
/// the end are the caller's, and so is the order in which the bytes of the result travel.
/// @{

/// CRC-16 (ARC, IBM), polynomial 0xA001, reflected. From 0xFFFF it is the CRC of Modbus.
unsigned short update_crc_16(unsigned short crc, char c);
/// Kermit, the reflected CRC-CCITT, polynomial 0x8408. "123456789" from 0 gives 0x2189.
unsigned short update_crc_kermit(unsigned short crc, char c);
/// DNP 3.0, polynomial 0xA6BC, reflected. It is complemented at the end.
unsigned short update_crc_dnp(unsigned short crc, char c);
/// CRC-CCITT, polynomial 0x1021, not reflected. "123456789" gives 0x29B1 from 0xFFFF and 0x31C3 from 0.
unsigned short update_crc_ccitt(unsigned short crc, char c);
/// CRC-32 (IEEE 802.3), polynomial 0xEDB88320, reflected. Starts with 0xFFFFFFFF and is complemented at the
/// end. Only 32 bits count, also where unsigned long has more: the others are ignored in \a crc and 0 in the
/// result.
unsigned long update_crc_32(unsigned long crc, char c);
/// The CRC of SICK sensors, polynomial 0x8005. \a prev is the byte before \a c, 0 for the first one.
unsigned short update_crc_sick(unsigned short crc, char c, char prev);

/// @}
