#include "bench/support/transactions.h"

#include "bench/support/filled_slave.h"
#include "host/driver_interface.h"
#include "tests/doubles/command.h"
#include "tests/doubles/frames.h"

#include <stdexcept>

std::vector<Transaction> measuredTransactions()
{
    return {{"read 10 registers",
             makeCommand(WordItem, QLatin1String("HR100"), 10),
             {},
             hostRegisters(99, 10),
             3,
             99,
             10},
            {"read 125 registers",
             makeCommand(WordItem, QLatin1String("HR100"), 125),
             {},
             hostRegisters(99, 125),
             3,
             99,
             125},
            {"read 2000 coils",
             makeCommand(BitItem, QLatin1String("DO1"), 2000),
             {},
             hostBits(0, 2000),
             1,
             0,
             2000},
            {"write 10 registers",
             makeCommand(WordItem, QLatin1String("HR100"), 10),
             hostRegisters(99, 10),
             {},
             16,
             99,
             10}};
}

QByteArray requestFrame(const Transaction &transaction)
{
    if (transaction.function != 16)
        return fieldsFrame(1, transaction.function, transaction.start, transaction.count);
    return writeMultipleFrame(1, transaction.function, transaction.start, transaction.count,
                              wireRegisters(transaction.start, transaction.count));
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
