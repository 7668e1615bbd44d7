#pragma once

#include "tests/support/driver_test.h"

#include <string>
#include <vector>

/// One command for each reader and writer of the driver, with the exchanges that it takes when all goes well.
struct Transaction {
    struct Exchange {
        QByteArray request;
        QByteArray reply;
    };

    const char *name;
    bool isWrite;
    int dataType;
    const char *address;
    int count;
    const char *data;
    /// What a failure's text ends with.
    const char *details;

    std::vector<Exchange> exchanges;
    /// What the read returns; empty for a write.
    QByteArray result;
};

/// The tags that the transactions on used bits need.
QStringList transactionTags();
/// All of them, run once on a model slave of station 1 to learn their exchanges and results.
std::vector<Transaction> makeTransactions();
