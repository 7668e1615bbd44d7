#pragma once

#include "bench/support/transactions.h"

#include <memory>
#include <vector>

/// One way to have a slave do a transaction, over a connection of its own.
class Client
{
public:
    Client() = default;
    Client(const Client &) = delete;
    Client &operator=(const Client &) = delete;
    virtual ~Client() = default;

    virtual const char *name() const = 0;
    /// Whether the client is able to do it at all.
    virtual bool canDo(const Transaction & /*transaction*/) const { return true; }
    virtual void prepare(const Transaction &transaction) = 0;
    /// Does the transaction that was prepared last.
    virtual void run() = 0;
    /// What the last run gave, laid out as the host gets it; nothing for a write that the slave confirmed.
    /// Throws when the run failed.
    virtual QByteArray result() = 0;
};

/// The limit: ready-made frames, sent and received whole.
std::unique_ptr<Client> bareLoop();
/// The channel that the driver gets, used as the driver uses it.
std::unique_ptr<Client> channelAlone();
/// The driver on that channel.
std::unique_ptr<Client> driverOnChannel();
std::unique_ptr<Client> libmodbusClient();
std::unique_ptr<Client> qtClient();
