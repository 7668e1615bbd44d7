#include "tests/plants/plant.h"

#include "desk/wire/rtu_frame.h"

// What is at a port that is none of a slave with RTU framing.

namespace
{

const qint64 Soon = 20000;

QByteArray asciiFrame(const QByteArray &bytes)
{
    int sum = 0;
    for (const char byte : bytes)
        sum += static_cast<quint8>(byte);
    return ':' + (bytes + static_cast<char>(-sum)).toHex().toUpper() + "\r\n";
}

} // namespace

void Plant::serve(const QByteArray &bytes)
{
    using Protocol = PlantOptions::Protocol;
    m_received += bytes;
    const QByteArray received = m_received;
    const auto reply = [this](const QByteArray &answer, bool endsThen) {
        m_received.clear();
        after(Soon, [answer, endsThen](Plant &plant) {
            plant.send(answer);
            if (endsThen)
                plant.end(false);
        });
    };
    switch (m_options.protocol) {
    case Protocol::ModbusTcp: {
        const int header = 7;
        const int station = byteAt(received, 6);
        const bool isRequest = received.size() >= 12 && wordAt(received, 2) == 0 && wordAt(received, 4) == 6;
        if (!isRequest || m_stations.count(station) == 0)
            return;
        const QByteArray pdu = execute(station, received.mid(header));
        reply(received.left(4) + '\0' + static_cast<char>(pdu.size() + 1) + static_cast<char>(station) + pdu,
              false);
        return;
    }
    case Protocol::ModbusAscii: {
        const int begin = int(received.indexOf(':'));
        const QByteArray request = QByteArray::fromHex(received.mid(begin + 1).trimmed());
        const int station = byteAt(request, 0);
        if (begin >= 0 && received.endsWith("\r\n") && m_stations.count(station) != 0)
            reply(asciiFrame(QByteArray(1, static_cast<char>(station)) +
                             execute(station, request.mid(1, request.size() - 2))),
                  false);
        return;
    }
    case Protocol::Http:
        if (received.contains("\r\n\r\n"))
            reply("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n", true);
        return;
    case Protocol::Tls:
        reply(byteAt(received, 0) == 0x16 ? QByteArray::fromHex("15030300020228") : QByteArray(), true);
        return;
    case Protocol::Ssh:
    case Protocol::EndsAfterRequest: reply({}, true); return;
    case Protocol::Banner: reply("unknown command\r\n", false); return;
    case Protocol::EchoOnly: reply(bytes, false); return;
    default: return;
    }
}
