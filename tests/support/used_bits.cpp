#include "tests/support/used_bits.h"

#include "tests/support/frames.h"

namespace
{

const int BytesOfAnArea = 65536 / 8;

int wordAt(const QByteArray &bytes, int i)
{
    return static_cast<unsigned char>(bytes.at(i)) * 256 + static_cast<unsigned char>(bytes.at(i + 1));
}

QByteArray allOff(const QByteArray &readRequest)
{
    return readReply(readRequest.at(0), readRequest.at(1),
                     QByteArray((wordAt(readRequest, 4) + 7) / 8, '\0'));
}

std::string addressesIn(const QList<QByteArray> &readRequests)
{
    std::string addresses;
    for (int i = 0; i < readRequests.size(); ++i)
        for (int k = 0; k < wordAt(readRequests.at(i), 4); ++k)
            addresses += " " + std::to_string(wordAt(readRequests.at(i), 2) + k);
    return addresses;
}

} // namespace

std::string usedBits(DriverInterface &driver, ScriptedChannel &channel, int station)
{
    std::string used;
    channel.station = station;
    channel.setResponder(allOff);
    CommunicatorCommand command;
    command.dataType = 5;
    command.count = BytesOfAnArea;
    for (const char *area : {"DI", "DO"}) {
        command.address = QLatin1String(area) + QLatin1Char('1');
        channel.forgetCalls();
        driver.read(&channel, command);
        if (driver.hasError())
            return driver.getLastError().toUtf8().constData();
        const std::string addresses = addressesIn(channel.requests());
        if (!addresses.empty())
            used += (used.empty() ? "" : ", ") + (area + addresses);
    }
    return used;
}
