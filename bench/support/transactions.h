#pragma once

#include "host/communicator_command.h"

#include <QByteArray>

#include <vector>

class AbstractDeviceInterface;
class DriverInterface;

/// One command and what it must give.
struct Transaction {
    const char *name;
    CommunicatorCommand command;
    QByteArray written;  ///< what a write sends, as the host lays it out; empty for a read
    QByteArray expected; ///< what a read returns
    int function;        ///< of the request that it makes,
    int start;           ///< from which address on, zero-based,
    int count;           ///< and for how many registers or bits
};

/// The request of a transaction to station 1.
QByteArray requestFrame(const Transaction &transaction);

/// The transactions that are counted and timed: reads of 10 and 125 registers and of 2000 coils, a write of
/// 10 registers.
std::vector<Transaction> measuredTransactions();

/// Runs the transaction through the driver and throws when the result is not the expected one.
void check(DriverInterface &driver, AbstractDeviceInterface &channel, const Transaction &transaction);
/// Runs the transaction through the driver.
void run(DriverInterface &driver, AbstractDeviceInterface &channel, const Transaction &transaction);
