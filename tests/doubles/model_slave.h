#pragma once

#include <QByteArray>

#include <cstdint>
#include <vector>

/// A Modbus slave with memory that decodes RTU requests by the protocol alone. It serves functions 1 to 6, 15
/// and 16, reads of up to 2008 bits and 125 registers, writes of up to 1976 coils and 123 registers.
class ModelSlave
{
public:
    /// Every area has \a areaSize items, all 0; requests beyond them are answered with exception 2.
    explicit ModelSlave(int stationId = 1, int areaSize = 65536);

    /// The reply; empty where a slave stays silent: another station, a wrong CRC, a length that does not fit.
    QByteArray answer(const QByteArray &request);
    /// The PDU of the reply to a request's PDU of the right length, without station and CRC.
    QByteArray replyPdu(const QByteArray &pdu);

    int station;
    std::vector<std::uint8_t> coils;
    std::vector<std::uint8_t> discreteInputs;
    std::vector<std::uint16_t> holdingRegisters;
    std::vector<std::uint16_t> inputRegisters;

private:
    QByteArray readBits(const QByteArray &pdu, const std::vector<std::uint8_t> &bits) const;
    QByteArray readRegisters(const QByteArray &pdu, const std::vector<std::uint16_t> &registers) const;
    QByteArray writeCoil(const QByteArray &pdu);
    QByteArray writeRegister(const QByteArray &pdu);
    QByteArray writeCoils(const QByteArray &pdu);
    QByteArray writeRegisters(const QByteArray &pdu);
};
