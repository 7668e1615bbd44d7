#include "desk/doctor/examinations/examination.h"
#include "desk/doctor/observing/evidence.h"
#include "desk/wire/rtu_frame.h"

#include <algorithm>

// Who is at the port, where nobody answers as an RTU slave.

namespace
{

const qint64 Second = 1000000;

// A request with a Modbus/TCP header, for one holding register.
QByteArray tcpRequest(int station)
{
    return QByteArray::fromHex("4d4200000006") + readRequest(station, Area::HoldingRegisters, 0, 1).left(6);
}

QByteArray asciiRequest(int station)
{
    const QByteArray bytes = readRequest(station, Area::HoldingRegisters, 0, 1).left(6);
    int sum = 0;
    for (const char byte : bytes)
        sum += static_cast<quint8>(byte);
    return ':' + (bytes + static_cast<char>(-sum)).toHex().toUpper() + "\r\n";
}

QByteArray pageRequest(int /*station*/)
{
    return "GET / HTTP/1.0\r\n\r\n";
}

// The shortest greeting of a client that TLS 1.2 allows: one cipher, no compression.
QByteArray tlsGreeting(int /*station*/)
{
    const QByteArray body =
        QByteArray::fromHex("0303") + QByteArray(32, 'd') + QByteArray::fromHex("000002002f0100");
    const QByteArray hello = QByteArray::fromHex("010000") + static_cast<char>(body.size()) + body;
    return QByteArray::fromHex("16030100") + static_cast<char>(hello.size()) + hello;
}

bool isTcpReply(const QByteArray &bytes)
{
    const int headerSize = 6;
    const int start = int(bytes.indexOf(QByteArray::fromHex("4d420000")));
    const QByteArray reply = start < 0 ? QByteArray() : bytes.mid(start);
    const int length = wordAt(reply, 4);
    const bool isCopy = length == 6 && byteAt(reply, 7) == modbus::ReadHoldingRegisters && reply.size() == 12;
    return length > 2 && reply.size() >= headerSize + length && !isCopy &&
           (byteAt(reply, 7) & modbus::MaxFunction) == modbus::ReadHoldingRegisters;
}

bool isAsciiReply(const QByteArray &bytes)
{
    const int start = int(bytes.lastIndexOf(':'));
    const QByteArray reply = QByteArray::fromHex(bytes.mid(start + 1).trimmed());
    int sum = 0;
    for (const char byte : reply)
        sum += static_cast<quint8>(byte);
    return start >= 0 && reply.size() > 3 && reply.size() != 7 && sum % 256 == 0;
}

bool isHttp(const QByteArray &bytes)
{
    return bytes.contains("HTTP/1.") && !bytes.contains("GET /");
}

bool isSsh(const QByteArray &bytes)
{
    return bytes.contains("SSH-2.0") || bytes.contains("SSH-1.");
}

// An alert or a handshake, of any version.
bool isTls(const QByteArray &bytes)
{
    const int headerSize = 5;
    const int kind = byteAt(bytes, 0);
    const int length = wordAt(bytes, 3);
    return (kind == 0x15 || kind == 0x16) && byteAt(bytes, 1) == 3 && byteAt(bytes, 2) <= 4 &&
           (kind == 0x15 ? length == 2 : length > 3) && bytes.size() > headerSize &&
           !bytes.contains(QByteArray(32, 'd'));
}

bool isTelnet(const QByteArray &bytes)
{
    const int code = byteAt(bytes, 1);
    return byteAt(bytes, 0) == 0xFF && code >= 0xFB && code <= 0xFE;
}

// Lines of text; a registration packet in letters is none.
bool isText(const QByteArray &bytes)
{
    const auto isReadable = [](char letter) {
        return (letter >= ' ' && letter <= '~') || letter == '\r' || letter == '\n' || letter == '\t';
    };
    const auto readable = std::count_if(bytes.begin(), bytes.end(), isReadable);
    const int fewest = 4;
    const int mostOthers = 10; // a tenth
    return (bytes.size() >= fewest && (bytes.contains('\n') || bytes.contains('\r')) &&
            (bytes.size() - readable) * mostOthers <= bytes.size());
}

struct Probe {
    QByteArray (*request)(int station);
    qint64 wait;
};
const Probe Probes[] = {{tcpRequest, 2 * Second},
                        {asciiRequest, Second},
                        {pageRequest, 3 * Second / 2},
                        {tlsGreeting, 3 * Second / 2}};

struct Service {
    FindingKind kind;
    bool (*isMeant)(const QByteArray &bytes);
    const char *what;
};
const Service Services[] = {
    {FindingKind::Ssh, isSsh, "speaks SSH, for remote shells"},
    {FindingKind::Http, isHttp, "speaks HTTP, for web pages"},
    {FindingKind::Tls, isTls, "speaks TLS: the port is encrypted"},
    {FindingKind::ModbusTcp, isTcpReply, "speaks Modbus/TCP and not RTU"},
    {FindingKind::ModbusAscii, isAsciiReply, "speaks Modbus ASCII and not RTU"},
    {FindingKind::TextBanner, isText, "sends readable text, as another service does"},
};

struct Recognised {
    const Service *service = nullptr;
    QStringList evidence;
};

// What came before anything was asked, and what every request brought, each on its own.
Recognised recognised(const Observations &seen)
{
    for (const Service &service : Services) {
        for (const Stray &stray : seen.strays) {
            const bool isGreeting =
                service.kind == FindingKind::TextBanner && stray.isFirst && isTelnet(stray.bytes);
            if (isGreeting || service.isMeant(stray.bytes))
                return {&service, evidenceOf(std::vector<Stray>{stray})};
        }
        for (const Asked &asked : seen.asked) {
            if (service.isMeant(asked.received()))
                return {&service, evidenceOf(asked)};
        }
    }
    return {};
}

// Whether the line speaks RTU, however badly.
bool isRtu(const Observations &seen)
{
    return seen.working >= 0 || seen.hasFrames() ||
           std::any_of(seen.asked.begin(), seen.asked.end(),
                       [](const Asked &one) { return one.result == AskResult::Damaged; });
}

void observe(Examiner &examiner)
{
    for (const Probe &probe : Probes) {
        if (isRtu(examiner.seen()) || recognised(examiner.seen()).service != nullptr)
            return;
        if (!examiner.hasTimeFor(probe.wait))
            return;
        examiner.disconnect();
        examiner.say(probe.request(examiner.options().target.station), probe.wait);
    }
    examiner.disconnect();
}

bool isEnded(const Asked &asked)
{
    return asked.result == AskResult::Ended || asked.result == AskResult::Unsent;
}

Judgement judge(const Observations &seen, const DoctorOptions &options)
{
    Judgement judgement;
    if (seen.asked.empty() || isRtu(seen))
        return judgement;
    const Recognised found = recognised(seen);
    const QString endpoint = endpointText(options.target.host, options.target.port);
    judgement.explainsAll = true;
    judgement.remedy.worksNow = false;
    if (found.service != nullptr)
        judgement.add(found.service->kind,
                      QStringLiteral("%1 %2").arg(endpoint, QLatin1String(found.service->what)),
                      found.evidence);
    else if (std::all_of(seen.asked.begin(), seen.asked.end(), isEnded))
        judgement.add(FindingKind::ConnectionEnds,
                      QStringLiteral("%1 ends the connection after every request").arg(endpoint),
                      evidenceOf(seen.askedFor(Purpose::Contact)));
    else
        judgement = {};
    return judgement;
}

} // namespace

Examination serviceExamination()
{
    return {"looking who is at the port", observe, judge};
}
