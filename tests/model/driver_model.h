#pragma once

#include <QByteArray>

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

/// What a driver must make of a command, worked out on the memory of the slave instead of on frames.
///
/// Addresses come in their parts, so that nothing here reads address texts.
class DriverModel
{
public:
    struct Address {
        /// The whole text, for messages.
        std::string text;
        std::string area;
        /// Zero-based.
        int offset;
        int bit;
    };

    struct Outcome {
        /// What a read returns.
        QByteArray data;
        /// What a write returns.
        bool isWritten;
        /// The error text, empty when there is none.
        std::string error;
    };

    struct UsedBits {
        std::set<int> discreteInputs;
        std::set<int> coils;
    };

    /// A slave whose four areas have \a areaSize items.
    explicit DriverModel(int areaSize);
    virtual ~DriverModel() = default;

    Outcome read(int dataType, const Address &address, int count);
    Outcome write(int dataType, const Address &address, int count, const QByteArray &data);

    /// The channel's station; a slave with its low byte is there.
    int station;
    std::map<int, UsedBits> usedBits;
    std::vector<std::uint8_t> coils;
    std::vector<std::uint8_t> discreteInputs;
    std::vector<std::uint16_t> holdingRegisters;
    std::vector<std::uint16_t> inputRegisters;

protected:
    bool fail(const std::string &text);

    /// What may go wrong on the way; each says why. Here nothing does but a station that accepts no reply.
    /// @{
    /// Whether a request reaches the slave.
    virtual bool isSent() { return true; }
    /// Whether its reply, or its exception, passes the checks before their content counts.
    virtual bool isAnswered(bool isException);
    /// A failure after which the channel is closed.
    virtual bool failAndClose(const std::string &text) { return fail(text); }
    /// @}

private:
    bool isServed(long long start, long long quantity);

    bool readRegisters(const char *item, const Address &address, const std::string &area, long long count,
                       std::vector<std::uint16_t> &registers);
    QByteArray readRegisterItems(int dataType, const Address &address, int count);
    QByteArray readRegisterBits(const Address &address, int count);
    QByteArray readBits(const std::string &area, bool isCoil, int offset, long long count);
    QByteArray readUsedBits(bool isCoil, const Address &address, int count);

    bool writeRegisters(int dataType, const Address &address, long long count, const QByteArray &data,
                        bool isOneByOne);
    bool storeRegisters(const char *item, int offset, const std::vector<std::uint16_t> &registers,
                        bool isOneByOne);
    bool storeEach(int offset, const std::vector<std::uint16_t> &registers);
    bool writeRegisterBits(const Address &address, int count, const QByteArray &bits, bool isOneByOne);
    bool writeCoils(const Address &address, int count, const QByteArray &bits, bool isOneByOne);

    std::string error;
};
