#pragma once

#include <QtGlobal>

/// The numbers of the protocol, each once for everything at a desk. The driver has its own; a test holds
/// them side by side.

/// The four areas of a Modbus device ("MODBUS Application Protocol V1.1b3", 4.3).
enum class Area { DiscreteInputs, Coils, InputRegisters, HoldingRegisters };

/// Whether the items of the area are bits; otherwise they are registers of 16 bits.
constexpr bool isBitArea(Area area)
{
    return area == Area::DiscreteInputs || area == Area::Coils;
}
/// Whether masters cannot write to the area.
constexpr bool isInputArea(Area area)
{
    return area == Area::DiscreteInputs || area == Area::InputRegisters;
}

namespace modbus
{

/// Function codes ("MODBUS Application Protocol V1.1b3", 5.1).
enum Function : int {
    ReadCoils = 1,
    ReadDiscreteInputs = 2,
    ReadHoldingRegisters = 3,
    ReadInputRegisters = 4,
    WriteSingleCoil = 5,
    WriteSingleRegister = 6,
    Diagnostics = 8,
    WriteMultipleCoils = 15,
    WriteMultipleRegisters = 16
};
/// Sub-function of Diagnostics: the reply is equal to the request.
const int ReturnQueryData = 0;
const int MaxFunction = 127;
/// Set in the function code of an exception reply.
const int ExceptionFlag = 0x80;

/// Exception codes ("MODBUS Application Protocol V1.1b3", 7).
enum Exception : int {
    IllegalFunction = 1,
    IllegalDataAddress = 2,
    IllegalDataValue = 3,
    ServerDeviceFailure = 4,
    Acknowledge = 5,
    ServerDeviceBusy = 6,
    NegativeAcknowledge = 7,
    MemoryParityError = 8,
    GatewayPathUnavailable = 10,
    GatewayTargetFailed = 11
};

/// Every area has the offsets 0 to 65535.
const int AddressSpace = 65536;
const int ByteBits = 8;
const int RegisterBits = 16;
const int RegisterBytes = 2;

/// What one request carries ("MODBUS Application Protocol V1.1b3", 6.1 to 6.4, 6.11 and 6.12).
const int MaxReadRegisters = 125;
const int MaxReadBits = 2000;
const int MaxWriteRegisters = 123;
const int MaxWriteCoils = 1968;

/// Nobody answers what is sent to this station ("MODBUS over Serial Line V1.02", 2.1).
const int BroadcastStation = 0;
/// Above it stations are reserved ("MODBUS over Serial Line V1.02", 2.2).
const int MaxStation = 247;
/// What the station's byte can hold.
const int MaxStationNumber = 255;

/// A frame is station, function, data and CRC ("MODBUS over Serial Line V1.02", 2.5.1).
const int MinFrameSize = 4;
const int MaxFrameSize = 256;
const int CrcSize = 2;
/// Station, function, code, CRC.
const int ExceptionReplySize = 5;
/// Station, function, two fields, CRC: requests of functions 1 to 6, and what confirms a write.
const int ShortFrameSize = 8;

constexpr bool isRead(int function)
{
    return function >= ReadCoils && function <= ReadInputRegisters;
}
constexpr bool isReadOfBits(int function)
{
    return function == ReadCoils || function == ReadDiscreteInputs;
}
constexpr bool isWriteSingle(int function)
{
    return function == WriteSingleCoil || function == WriteSingleRegister;
}
constexpr bool isWriteMultiple(int function)
{
    return function == WriteMultipleCoils || function == WriteMultipleRegisters;
}
/// How many bytes hold so many bits.
constexpr int bytesOfBits(int bits)
{
    return (bits + ByteBits - 1) / ByteBits;
}

} // namespace modbus
