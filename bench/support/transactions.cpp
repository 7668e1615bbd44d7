#include "support/transactions.h"

#include "drivers/tools/command_data.h"
#include "host/driver_interface.h"
#include "support/slave_model.h"

#include <stdexcept>

CommunicatorCommand command(int dataType, int count, const char *address)
{
    CommunicatorCommand command;
    command.dataType = dataType;
    command.count = count;
    command.address = QString::fromLatin1(address);
    return command;
}

std::vector<Transaction> measuredTransactions()
{
    return {{"read 10 registers", command(WordItem, 10, "HR100"), {}, hostRegisters(99, 10), 3, 99, 10},
            {"read 125 registers", command(WordItem, 125, "HR100"), {}, hostRegisters(99, 125), 3, 99, 125},
            {"read 2000 coils", command(BitItem, 2000, "DO1"), {}, hostBits(0, 2000), 1, 0, 2000},
            {"write 10 registers", command(WordItem, 10, "HR100"), hostRegisters(99, 10), {}, 16, 99, 10}};
}

QByteArray requestPdu(const Transaction &transaction)
{
    QByteArray pdu;
    pdu.append(static_cast<char>(transaction.function));
    for (const int field : {transaction.start, transaction.count}) {
        pdu.append(static_cast<char>(field >> 8));
        pdu.append(static_cast<char>(field & 0xFF));
    }
    if (transaction.function == 16) {
        pdu.append(static_cast<char>(2 * transaction.count));
        pdu.append(wireRegisters(transaction.start, transaction.count));
    }
    return pdu;
}

void check(DriverInterface &driver, AbstractDeviceInterface &channel, const Transaction &transaction)
{
    const bool isRight =
        transaction.written.isEmpty()
            ? driver.read(&channel, transaction.command) == transaction.expected && !driver.hasError()
            : driver.write(&channel, transaction.command, transaction.written) && !driver.hasError();
    if (!isRight)
        throw std::runtime_error(std::string(transaction.name) + ": " + driver.getLastError().toStdString());
}

void run(DriverInterface &driver, AbstractDeviceInterface &channel, const Transaction &transaction)
{
    if (transaction.written.isEmpty())
        driver.read(&channel, transaction.command);
    else
        driver.write(&channel, transaction.command, transaction.written);
}
