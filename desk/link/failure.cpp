#include "desk/link/failure.h"

#include "desk/link/tcp_line.h"
#include "desk/wire/frame_text.h"
#include "desk/wire/protocol.h"

namespace
{

struct KnownText {
    const char *beginning; // of the driver's text
    FailureKind kind;
    const char *advice;
};

const char RefusedAdvice[] = "the slave is there and refuses; see its manual for the code";
const char CutAdvice[] = "the reply stopped short: --timeout, or a gateway that cuts frames";

const KnownText KnownTexts[] = {
    {"can not open database", FailureKind::ProjectDatabase,
     "is the file a project database? driverhost project --why explains it"},
    {"failed to get default station id", FailureKind::ProjectDatabase,
     "has the project a link for this device with a default node? driverhost project --why explains it"},
    {"failed to initialize valid bit addresses table", FailureKind::ProjectDatabase,
     "has the project a tag table? driverhost project --why explains it"},
    {"invalid address", FailureKind::BitNotInProject, "the project has no tag on a bit of this station"},
    {"exception code:", FailureKind::Exception, RefusedAdvice},
    {"can't read", FailureKind::NotRequested,
     "the range ends beyond the area, or is more than one request carries"},
    {"can't write", FailureKind::NotRequested,
     "this area has no writer for this kind, or the range is too long"},
    {"unsupported data type", FailureKind::NotRequested,
     "use the kind bit, byte, word, dword, block or bit2"},
    {"PLC no response", FailureKind::NoReply,
     "station id, baud rate behind the gateway, wiring, and --timeout"},
    {"invalid slave id", FailureKind::OtherStation,
     "another station answered: two with the same gateway port, or a late reply"},
    {"invalid response", FailureKind::NotUnderstood,
     "does the gateway speak RTU framing, and not Modbus/TCP?"},
    {"CRC error", FailureKind::Damaged, "noise on the line, or another sender on the same gateway"},
    {"packet loss", FailureKind::Cut, CutAdvice},
    {"received bytes <", FailureKind::Cut, CutAdvice},
};

const KnownText SendingBroke = {"", FailureKind::SendingBroke,
                                "the connection broke while the request was sent"};
const KnownText NotConnected = {"", FailureKind::CannotConnect,
                                "host, port, cable and firewall; is another master connected?"};
const KnownText UnknownName = {"", FailureKind::CannotConnect,
                               "the name as it is spelt, the name server, or give the address in numbers"};
const KnownText EndedByOther = {
    "", FailureKind::ConnectionEnded,
    "the slave or its gateway closed the connection: another master on it, its limit "
    "of connections, or its time for idle ones"};
const KnownText Echoed = {
    "", FailureKind::Echo,
    "what came is the request itself: the line echoes; switch that off in the gateway or the "
    "two-wire adapter"};

const KnownText Withheld = {
    "", FailureKind::NoReply,
    "not sent: an earlier request has not been answered, and its late reply could be taken for the answer to "
    "this one; --timeout, and --settle for how the line is settled"};

struct ExceptionAdvice {
    modbus::Exception code;
    const char *advice;
};

// The words of the table in docs/error-texts.md.
const ExceptionAdvice ExceptionAdvices[] = {
    {modbus::IllegalFunction,
     "the slave does not know this function; without function 15 or 16, use an FN5DO or FN6HR address"},
    {modbus::IllegalDataAddress,
     "the range touches an address that the slave does not have; numbers in address texts count from 1"},
    {modbus::IllegalDataValue, "too many items at once for this slave, or a value that it does not take"},
    {modbus::ServerDeviceFailure, "look at the slave"},
    {modbus::Acknowledge, "the slave needs longer; ask again later"},
    {modbus::ServerDeviceBusy, "ask less often: raise the delay"},
    {modbus::NegativeAcknowledge, "the slave cannot carry it out; see its manual"},
    {modbus::MemoryParityError, "look at the slave"},
    {modbus::GatewayPathUnavailable,
     "the gateway is not set up for that station: its routing table and serial port"},
    {modbus::GatewayTargetFailed,
     "the gateway got no answer from the station: station id, wiring and baud rate behind it"},
};

QString exceptionAdvice(int code)
{
    for (const ExceptionAdvice &known : ExceptionAdvices) {
        if (known.code == code)
            return QLatin1String(known.advice);
    }
    return QLatin1String(RefusedAdvice);
}

const KnownText &knownText(const QString &text)
{
    for (const KnownText &candidate : KnownTexts) {
        if (text.startsWith(QLatin1String(candidate.beginning), Qt::CaseInsensitive))
            return candidate;
    }
    return SendingBroke;
}

bool mayBeOfAnEnd(FailureKind kind)
{
    return kind == FailureKind::NoReply || kind == FailureKind::Cut || kind == FailureKind::SendingBroke;
}

bool mayBeOfAnEcho(FailureKind kind)
{
    return kind == FailureKind::Damaged || kind == FailureKind::Cut || kind == FailureKind::NoReply;
}

// What the last attempt that was sent came to. What was not sent after it is silence to the driver.
const KnownText &sentBefore(const CommandRecord &record)
{
    if (record.exchanges().empty())
        return Withheld;
    switch (outcomeOf(record.exchanges().back())) {
    case Outcome::Silence: return knownText(QStringLiteral("PLC no response"));
    case Outcome::Cut: return knownText(QStringLiteral("packet loss"));
    case Outcome::CrcError: return knownText(QStringLiteral("CRC error"));
    case Outcome::OtherStation: return knownText(QStringLiteral("invalid slave id"));
    case Outcome::OtherFunction: return knownText(QStringLiteral("invalid response"));
    default: return Withheld;
    }
}

// The texts say what the driver saw of the bytes; the line knows more.
const KnownText &known(const QString &text, const CommandRecord &record)
{
    if (!record.hasOpened())
        return text.endsWith(QLatin1String(UnknownHost)) ? UnknownName : NotConnected;
    const KnownText &match = knownText(text);
    if (record.isEndedByOther() && mayBeOfAnEnd(match.kind))
        return EndedByOther;
    if (record.isEchoed() && mayBeOfAnEcho(match.kind))
        return Echoed;
    if (record.isWithheld() && match.kind == FailureKind::NoReply)
        return sentBefore(record);
    return match;
}

// Two hexadecimal digits after "exception code:0x".
int exceptionIn(const QString &text)
{
    const int position = static_cast<int>(qstrlen("exception code:0x"));
    return text.mid(position, 2).toInt(nullptr, 16);
}

} // namespace

QString nameOf(FailureKind kind)
{
    switch (kind) {
    case FailureKind::CannotConnect: return QStringLiteral("no-connection");
    case FailureKind::ConnectionEnded: return QStringLiteral("connection-ended");
    case FailureKind::SendingBroke: return QStringLiteral("sending-broke");
    case FailureKind::NoReply: return QStringLiteral("no-reply");
    case FailureKind::OtherStation: return QStringLiteral("other-station");
    case FailureKind::NotUnderstood: return QStringLiteral("other-function");
    case FailureKind::Echo: return QStringLiteral("echo");
    case FailureKind::Damaged: return QStringLiteral("crc-error");
    case FailureKind::Cut: return QStringLiteral("cut-reply");
    case FailureKind::Exception: return QStringLiteral("exception");
    case FailureKind::NotRequested: return QStringLiteral("not-requested");
    case FailureKind::ProjectDatabase: return QStringLiteral("project-database");
    case FailureKind::BitNotInProject: return QStringLiteral("not-in-project");
    }
    return {};
}

bool Failure::isStationAbsent() const
{
    return exception == modbus::GatewayPathUnavailable || exception == modbus::GatewayTargetFailed;
}

Failure failureOf(const QString &text, const CommandRecord &record)
{
    const KnownText &match = known(text, record);
    Failure failure{match.kind, 0, text, QLatin1String(match.advice)};
    if (failure.kind == FailureKind::Exception) {
        failure.exception = exceptionIn(text);
        failure.advice = QStringLiteral("%1: %2").arg(exceptionName(failure.exception),
                                                      exceptionAdvice(failure.exception));
    }
    return failure;
}
