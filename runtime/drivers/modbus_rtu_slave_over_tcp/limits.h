#pragma once

/// \file
/// How much one request asks for.

/// The most registers and bits in one read. The protocol ends at 2000 bits ("MODBUS Application Protocol
/// V1.1b3", 6.1); 2008 still fit the reply buffer, and there are slaves that serve them.
const int MaxRegistersRead = 125;
const int MaxBitsRead = 2008;
/// The most registers and coils in one write. The protocol ends at 1968 coils ("MODBUS Application Protocol
/// V1.1b3", 6.11); 1976 are 247 bytes of data, which slaves without that limit take.
const unsigned int MaxRegistersWritten = 123;
const unsigned int MaxCoilsWritten = 1976;

/// One past the last address of an area.
const unsigned int AddressSpace = 65536;
