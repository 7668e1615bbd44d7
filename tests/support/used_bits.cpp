#include "tests/support/used_bits.h"

#include "tests/doubles/command.h"
#include "tests/doubles/frames.h"

namespace
{

const int BytesOfAnArea = 65536 / 8;

QByteArray allOff(const QByteArray &readRequest)
{
    return goodReply(readRequest, QByteArray());
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
    for (const char *area : {"DI", "DO"}) {
        channel.forgetCalls();
        driver.read(&channel, makeCommand(BlockItem, QLatin1String(area) + QLatin1Char('1'), BytesOfAnArea));
        if (driver.hasError())
            return driver.getLastError().toUtf8().constData();
        const std::string addresses = addressesIn(channel.requests());
        if (!addresses.empty())
            used += (used.empty() ? "" : ", ") + (area + addresses);
    }
    return used;
}
