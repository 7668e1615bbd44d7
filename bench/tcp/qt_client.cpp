#include "bench/tcp/client.h"
#include "bench/tcp/slave.h"

#include <QCoreApplication>
#include <QModbusDataUnit>
#include <QModbusTcpClient>
#include <QVariant>

#include <stdexcept>

namespace
{

void wait()
{
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

class QtClient : public Client
{
public:
    QtClient()
    {
        client.setConnectionParameter(QModbusDevice::NetworkAddressParameter, QStringLiteral("127.0.0.1"));
        client.setConnectionParameter(QModbusDevice::NetworkPortParameter, slave.port());
        client.connectDevice();
        while (client.state() == QModbusDevice::ConnectingState)
            wait();
        if (client.state() != QModbusDevice::ConnectedState)
            throw std::runtime_error(client.errorString().toStdString());
    }

    ~QtClient() override
    {
        client.disconnectDevice();
        while (client.state() != QModbusDevice::UnconnectedState)
            wait();
    }

    const char *name() const override { return "QModbusTcpClient"; }

    // Qt 5.15 takes a reply with 128 bytes of bits or more for an invalid one.
    bool canDo(const Transaction &next) const override { return next.function != 1 || next.count < 8 * 128; }

    void prepare(const Transaction &next) override
    {
        transaction = next;
        const QModbusDataUnit::RegisterType area =
            transaction.function == 1 ? QModbusDataUnit::Coils : QModbusDataUnit::HoldingRegisters;
        unit = QModbusDataUnit(area, transaction.start, static_cast<quint16>(transaction.count));
        for (int i = 0; 2 * i + 1 < transaction.written.size(); ++i)
            unit.setValue(
                i, static_cast<quint16>(static_cast<unsigned char>(transaction.written.at(2 * i)) |
                                        static_cast<unsigned char>(transaction.written.at(2 * i + 1)) << 8));
    }

    void run() override
    {
        reply.reset(transaction.written.isEmpty() ? client.sendReadRequest(unit, 1)
                                                  : client.sendWriteRequest(unit, 1));
        while (!reply->isFinished())
            wait();
    }

    QByteArray result() override
    {
        if (reply->error() != QModbusDevice::NoError)
            throw std::runtime_error(reply->errorString().toStdString());
        QByteArray bytes;
        if (!transaction.written.isEmpty())
            return bytes;
        const QModbusDataUnit values = reply->result();
        if (transaction.function == 1)
            bytes = QByteArray((transaction.count + 7) / 8, '\0');
        for (int i = 0; i < static_cast<int>(values.valueCount()); ++i) {
            if (transaction.function == 1) {
                bytes[i / 8] = static_cast<char>(bytes.at(i / 8) | values.value(i) << i % 8);
            } else {
                bytes.append(static_cast<char>(values.value(i) & 0xFF));
                bytes.append(static_cast<char>(values.value(i) >> 8));
            }
        }
        return bytes;
    }

private:
    Slave slave{Framing::Mbap};
    QModbusTcpClient client;
    std::unique_ptr<QModbusReply> reply;
    Transaction transaction;
    QModbusDataUnit unit;
};

} // namespace

std::unique_ptr<Client> qtClient()
{
    return std::make_unique<QtClient>();
}
