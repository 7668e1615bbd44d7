#include "bench/support/filled_slave.h"
#include "bench/tcp/channel.h"
#include "bench/tcp/client.h"
#include "bench/tcp/slave.h"
#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

#include <stdexcept>

namespace
{

// Sends the request of a transaction as it stands, and keeps the reply.
class RawClient : public Client
{
public:
    void prepare(const Transaction &next) override
    {
        transaction = next;
        request = requestFrame(transaction);
        due = filledSlave().answer(request);
        reply = QByteArray(due.size(), '\0');
    }

    // What the driver would give for the reply, which must be just the frame that is due.
    QByteArray result() override
    {
        if (reply != due)
            throw std::runtime_error(std::string(transaction.name) + ": wrong reply");
        return transaction.expected;
    }

protected:
    Slave slave{Framing::Rtu};
    Transaction transaction;
    QByteArray request;
    QByteArray due;
    QByteArray reply;
};

class BareLoop : public RawClient
{
public:
    const char *name() const override { return "bare loop"; }

    void run() override
    {
        socket.send(request.constData(), request.size());
        for (int received = 0; received < reply.size();)
            received += socket.receive(reply.data() + received, reply.size() - received);
    }

private:
    Socket socket = Socket::connectedTo(slave.port());
};

class ChannelAlone : public RawClient
{
public:
    const char *name() const override { return "channel"; }

    void run() override
    {
        AbstractDeviceInterface &device = channel;
        device.writeData(request.constData(), request.size());
        device.readData(reply.data(), 5);
        device.readData(reply.data() + 5, reply.size() - 5);
    }

private:
    TcpChannel channel{slave.port()};
};

class DriverOnChannel : public Client
{
public:
    const char *name() const override { return "driver"; }

    void prepare(const Transaction &next) override { transaction = next; }

    void run() override
    {
        if (transaction.written.isEmpty())
            data = driver.read(&channel, transaction.command);
        else
            driver.write(&channel, transaction.command, transaction.written);
    }

    QByteArray result() override
    {
        if (driver.hasError())
            throw std::runtime_error(driver.getLastError().toStdString());
        return transaction.written.isEmpty() ? data : QByteArray();
    }

private:
    Slave slave{Framing::Rtu};
    TcpChannel channel{slave.port()};
    DriverModbusRtuSlaveOverTcp driver;
    Transaction transaction;
    QByteArray data;
};

} // namespace

std::unique_ptr<Client> bareLoop()
{
    return std::make_unique<BareLoop>();
}

std::unique_ptr<Client> channelAlone()
{
    return std::make_unique<ChannelAlone>();
}

std::unique_ptr<Client> driverOnChannel()
{
    return std::make_unique<DriverOnChannel>();
}
