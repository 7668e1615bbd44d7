#pragma once

#include <QByteArray>

/// Modbus RTU frames: station, function, data, CRC with its low byte first ("MODBUS over Serial Line
/// V1.02", 2.5.1). 16-bit fields between station and CRC are big-endian.

/// Function codes ("MODBUS Application Protocol V1.1b3", 6.1 to 6.6, 6.11 and 6.12).
enum ModbusFunction : unsigned char {
    ReadCoils = 1,
    ReadDiscreteInputs = 2,
    ReadHoldingRegisters = 3,
    ReadInputRegisters = 4,
    WriteSingleCoil = 5,
    WriteSingleRegister = 6,
    WriteMultipleCoils = 15,
    WriteMultipleRegisters = 16
};

const int RtuCrcSize = 2;

/// Whether the last two of \a length bytes are the CRC of those before them. \a length is at least 2.
bool ModbusRTUSlaveCheckCRC(const unsigned char *frame, unsigned int length);

/// The 8-byte request of functions 1 to 4: station, function, start, quantity, CRC.
QByteArray ModbusRTUSlaveBuildReadDevicesRequest(unsigned char station, unsigned char function,
                                                 unsigned short start, unsigned short quantity);
/// The request of functions 5 and 6: station, function, address, the bytes of \a value as they stand, CRC.
QByteArray ModbusRTUSlaveBuildWriteSingleRequest(unsigned char station, unsigned char function,
                                                 unsigned short address, const QByteArray &value);
/// The request of function 15: station, 15, start, quantity, byte count, \a data as it stands, CRC. The byte
/// count is the low 8 bits of the size of \a data; nothing compares it with the quantity.
QByteArray ModbusRTUSlaveBuildFn15Request(unsigned char station, unsigned short start,
                                          unsigned short quantity, const QByteArray &data);
/// The request of function 16, laid out as that of function 15; \a data holds the registers high byte first.
QByteArray ModbusRTUSlaveBuildFn16Request(unsigned char station, unsigned short start,
                                          unsigned short quantity, const QByteArray &data);
