#include "desk/link/failure.h"

#include "desk/wire/protocol.h"

namespace
{

struct KnownText {
    const char *start; // of the driver's text
    FailureKind kind;
    const char *advice;
};

const KnownText KnownTexts[] = {
    {"can not open database", FailureKind::ProjectDatabase,
     "is the file a project database? driverhost project --why tells"},
    {"failed to get default station id", FailureKind::ProjectDatabase,
     "has the project a link for this device with a default node? driverhost project --why tells"},
    {"failed to initialize valid bit addresses table", FailureKind::ProjectDatabase,
     "has the project a tag table? driverhost project --why tells"},
    {"invalid address", FailureKind::BitNotInProject, "the project has no tag on a bit of this station"},
    {"exception code:0x01", FailureKind::Exception,
     "the slave does not know this function; try FN6HR or FN5DO to write"},
    {"exception code:0x02", FailureKind::Exception, "the slave does not have all of these addresses"},
    {"exception code:0x03", FailureKind::Exception, "the slave does not take this count or value"},
    {"exception code:0x0A", FailureKind::Exception,
     "the gateway has no way to this station: its routing table and serial port"},
    {"exception code:0x0B", FailureKind::Exception,
     "the gateway got no answer from the station: station id, wiring and baud rate behind it"},
    {"exception code:", FailureKind::Exception,
     "the slave is there and refuses; see its manual for the code"},
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
    {"packet loss", FailureKind::Cut, "the reply stopped short: --timeout, or a gateway that cuts frames"},
    {"received bytes <", FailureKind::Cut,
     "the reply stopped short: --timeout, or a gateway that cuts frames"},
};

const KnownText SendingBroke = {"", FailureKind::SendingBroke,
                                "the connection broke while the request was sent"};
const KnownText NotConnected = {"", FailureKind::CannotConnect,
                                "host, port, cable and firewall; is another master connected?"};

const KnownText &known(const QString &text)
{
    for (const KnownText &candidate : KnownTexts) {
        if (text.startsWith(QLatin1String(candidate.start), Qt::CaseInsensitive))
            return candidate;
    }
    return SendingBroke;
}

// Two hexadecimal digits after "exception code:0x".
int exceptionIn(const QString &text)
{
    const int position = static_cast<int>(qstrlen("exception code:0x"));
    return text.mid(position, 2).toInt(nullptr, 16);
}

} // namespace

bool Failure::isStationAbsent() const
{
    return exception == modbus::GatewayPathUnavailable || exception == modbus::GatewayTargetFailed;
}

Failure failureOf(const QString &text, bool hasOpened)
{
    const KnownText &match = hasOpened ? known(text) : NotConnected;
    Failure failure{match.kind, 0, text, QLatin1String(match.advice)};
    if (failure.kind == FailureKind::Exception)
        failure.exception = exceptionIn(text);
    return failure;
}
