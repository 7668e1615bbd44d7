#include "tests/doubles/model_slave.h"

#include "tests/doubles/frames.h"

namespace
{

const int IllegalFunction = 1;
const int IllegalDataAddress = 2;
const int IllegalDataValue = 3;

const int MaxBitsRead = 2008;
const int MaxRegistersRead = 125;
const int MaxCoilsWritten = 1976;
const int MaxRegistersWritten = 123;

// The item at a distance from the start that the request names.
size_t itemAt(const QByteArray &pdu, int distance)
{
    return static_cast<size_t>(wordAt(pdu, 1)) + static_cast<size_t>(distance);
}

QByteArray exception(const QByteArray &pdu, int code)
{
    return QByteArray(1, static_cast<char>(byteAt(pdu, 0) + 128)) + static_cast<char>(code);
}

// 0, or the exception code for a start and a quantity.
int rangeFault(const QByteArray &pdu, int limit, size_t areaSize)
{
    const int quantity = wordAt(pdu, 3);
    if (quantity < 1 || quantity > limit)
        return IllegalDataValue;
    return itemAt(pdu, quantity) > areaSize ? IllegalDataAddress : 0;
}

// Whether the byte count, the quantity and the bytes after them fit each other.
bool isConsistent(const QByteArray &pdu, int bytesWanted)
{
    return byteAt(pdu, 5) == bytesWanted && pdu.size() == 6 + bytesWanted;
}

bool hasFittingLength(const QByteArray &pdu)
{
    switch (byteAt(pdu, 0)) {
    case 1:
    case 2:
    case 3:
    case 4:
    case 5:
    case 6: return pdu.size() == 5;
    case 15:
    case 16: return pdu.size() >= 6;
    default: return true;
    }
}

} // namespace

ModelSlave::ModelSlave(int stationId, int areaSize)
    : station(stationId),
      coils(static_cast<size_t>(areaSize)),
      discreteInputs(coils),
      holdingRegisters(static_cast<size_t>(areaSize)),
      inputRegisters(holdingRegisters)
{
}

QByteArray ModelSlave::answer(const QByteArray &request)
{
    if (request.size() < 4 || byteAt(request, 0) != station || !hasGoodCrc(request))
        return QByteArray();
    const QByteArray pdu = request.mid(1, request.size() - 3);
    return hasFittingLength(pdu) ? framed(request.left(1) + replyPdu(pdu)) : QByteArray();
}

QByteArray ModelSlave::replyPdu(const QByteArray &pdu)
{
    switch (byteAt(pdu, 0)) {
    case 1: return readBits(pdu, coils);
    case 2: return readBits(pdu, discreteInputs);
    case 3: return readRegisters(pdu, holdingRegisters);
    case 4: return readRegisters(pdu, inputRegisters);
    case 5: return writeCoil(pdu);
    case 6: return writeRegister(pdu);
    case 15: return writeCoils(pdu);
    case 16: return writeRegisters(pdu);
    default: return exception(pdu, IllegalFunction);
    }
}

QByteArray ModelSlave::readBits(const QByteArray &pdu, const std::vector<std::uint8_t> &bits) const
{
    const int fault = rangeFault(pdu, MaxBitsRead, bits.size());
    if (fault != 0)
        return exception(pdu, fault);
    const int quantity = wordAt(pdu, 3);
    std::vector<int> bytes(static_cast<size_t>((quantity + 7) / 8));
    for (int i = 0; i < quantity; ++i)
        if (bits[itemAt(pdu, i)] != 0)
            bytes[static_cast<size_t>(i / 8)] |= 1 << i % 8;
    QByteArray reply = pdu.left(1) + static_cast<char>(bytes.size());
    for (const int byte : bytes)
        reply += static_cast<char>(byte);
    return reply;
}

QByteArray ModelSlave::readRegisters(const QByteArray &pdu, const std::vector<std::uint16_t> &registers) const
{
    const int fault = rangeFault(pdu, MaxRegistersRead, registers.size());
    if (fault != 0)
        return exception(pdu, fault);
    const int quantity = wordAt(pdu, 3);
    QByteArray reply = pdu.left(1) + static_cast<char>(2 * quantity);
    for (int i = 0; i < quantity; ++i)
        reply += bigEndian(registers[itemAt(pdu, i)]);
    return reply;
}

QByteArray ModelSlave::writeCoil(const QByteArray &pdu)
{
    const int value = wordAt(pdu, 3);
    const auto address = itemAt(pdu, 0);
    if (value != 0xFF00 && value != 0)
        return exception(pdu, IllegalDataValue);
    if (address >= coils.size())
        return exception(pdu, IllegalDataAddress);
    coils[address] = value != 0 ? 1 : 0;
    return pdu;
}

QByteArray ModelSlave::writeRegister(const QByteArray &pdu)
{
    const auto address = itemAt(pdu, 0);
    if (address >= holdingRegisters.size())
        return exception(pdu, IllegalDataAddress);
    holdingRegisters[address] = static_cast<std::uint16_t>(wordAt(pdu, 3));
    return pdu;
}

QByteArray ModelSlave::writeCoils(const QByteArray &pdu)
{
    const int quantity = wordAt(pdu, 3);
    const int fault = isConsistent(pdu, (quantity + 7) / 8) ? rangeFault(pdu, MaxCoilsWritten, coils.size())
                                                            : IllegalDataValue;
    if (fault != 0)
        return exception(pdu, fault);
    for (int i = 0; i < quantity; ++i)
        coils[itemAt(pdu, i)] = (byteAt(pdu, 6 + i / 8) >> i % 8 & 1) != 0 ? 1 : 0;
    return pdu.left(5);
}

QByteArray ModelSlave::writeRegisters(const QByteArray &pdu)
{
    const int quantity = wordAt(pdu, 3);
    const int fault = isConsistent(pdu, 2 * quantity)
                          ? rangeFault(pdu, MaxRegistersWritten, holdingRegisters.size())
                          : IllegalDataValue;
    if (fault != 0)
        return exception(pdu, fault);
    for (int i = 0; i < quantity; ++i)
        holdingRegisters[itemAt(pdu, i)] = static_cast<std::uint16_t>(wordAt(pdu, 6 + 2 * i));
    return pdu.left(5);
}
