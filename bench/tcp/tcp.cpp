// Transactions over TCP, client and slave on one core, so that every transaction costs the same two changes
// between them. All clients take their turns in every round: what disturbs the machine disturbs all alike.

#include "bench/support/program.h"
#include "bench/support/projects.h"
#include "bench/tcp/client.h"

#include <sched.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <iostream>
#include <stdexcept>

namespace
{

const int Rounds = 61;
const int TransactionsInTurn = 200;

typedef std::vector<std::unique_ptr<Client>> Clients;

void stayOnOneCore()
{
    cpu_set_t cores;
    CPU_ZERO(&cores);
    CPU_SET(static_cast<size_t>(sched_getcpu()), &cores);
    if (sched_setaffinity(0, sizeof cores, &cores) != 0)
        throw std::runtime_error("cannot stay on one core");
}

void prepareAndCheck(Client &client, const Transaction &transaction)
{
    client.prepare(transaction);
    client.run();
    if (client.result() != transaction.expected)
        throw std::runtime_error(std::string(client.name()) + ", " + transaction.name + ": wrong result");
}

// Of both threads, the kernel's work for them included, but not of other programs on that core.
double processorNanoseconds()
{
    timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return 1e9 * static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec);
}

double nanosecondsOfTransaction(Client &client)
{
    const double start = processorNanoseconds();
    for (int i = 0; i < TransactionsInTurn; ++i)
        client.run();
    return (processorNanoseconds() - start) / TransactionsInTurn;
}

double quantile(const std::vector<double> &sorted, double part)
{
    return sorted[static_cast<size_t>(std::lround(part * static_cast<double>(sorted.size() - 1)))];
}

// One line: transaction, client, median, and the quantiles of 10 and 90 %.
void print(const Transaction &transaction, const Client &client, std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    std::cout << transaction.name << '\t' << client.name() << '\t' << quantile(times, 0.5) << '\t'
              << quantile(times, 0.1) << '\t' << quantile(times, 0.9) << std::endl;
}

std::vector<Client *> ableClients(const Clients &clients, const Transaction &transaction)
{
    std::vector<Client *> able;
    for (const auto &client : clients)
        if (client->canDo(transaction))
            able.push_back(client.get());
    return able;
}

void measure(const std::vector<Client *> &clients, const Transaction &transaction)
{
    for (Client *client : clients)
        prepareAndCheck(*client, transaction);
    std::vector<std::vector<double>> times(clients.size());
    for (size_t round = 0; round < Rounds; ++round)
        for (size_t turn = 0; turn < clients.size(); ++turn) {
            const size_t which = (round + turn) % clients.size();
            times[which].push_back(nanosecondsOfTransaction(*clients[which]));
        }
    for (size_t i = 0; i < clients.size(); ++i)
        print(transaction, *clients[i], times[i]);
}

} // namespace

int main(int argc, char **argv)
{
    return runProgram(argc, argv, "PROJECTS", [](const QStringList &arguments) {
        useProject(arguments[0] + QLatin1String("/bits"));
        stayOnOneCore();
        Clients clients;
        clients.push_back(bareLoop());
        clients.push_back(channelAlone());
        clients.push_back(driverOnChannel());
        clients.push_back(libmodbusClient());
        clients.push_back(qtClient());
        for (const Transaction &transaction : measuredTransactions())
            measure(ableClients(clients, transaction), transaction);
    });
}
