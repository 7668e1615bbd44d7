#include "desk/doctor/observing/finding.h"

#include <algorithm>
#include <cmath>

const std::vector<FindingInfo> &findingInfos()
{
    using Kind = FindingKind;
    static const std::vector<FindingInfo> infos = {
        {Kind::HostUnknown, "unknown-host", Weight::Explains, "The name of the host stands for no address.",
         "Check the spelling and the name server, or use the address in numbers."},
        {Kind::NobodyListens, "nobody-listens", Weight::Explains,
         "The host refuses connections to the port, twice with a second between.",
         "Check the port in the gateway's settings, and that its TCP server is on."},
        {Kind::Unreachable, "unreachable", Weight::Explains,
         "Nobody answers to the attempt at a connection, or the network knows no way.",
         "Check the address, the cable, power, the subnet and firewalls between here and there."},
        {Kind::ClosedAtOnce, "closed-at-once", Weight::Explains,
         "Every connection is taken and ended before anything was sent, also after pauses of 1, 2 and 4 "
         "seconds.",
         "Close the other connections to the gateway, raise its limit of connections, or allow this "
         "computer's address."},
        {Kind::SlotHeld, "slot-held", Weight::Explains,
         "The first connection is ended before anything was sent, and a later one stays.",
         "The gateway holds the place of an earlier connection for some seconds: close connections "
         "properly, leave time between two of them, or shorten the gateway's idle time."},
        {Kind::ModbusTcp, "modbus-tcp", Weight::Explains,
         "RTU requests are not answered, and a request with a Modbus/TCP header is answered with one.",
         "Set the gateway to RTU over TCP (also called transparent, raw or serial tunnel), or use a program "
         "that speaks Modbus/TCP; the driver speaks RTU only."},
        {Kind::ModbusAscii, "modbus-ascii", Weight::Explains,
         "RTU requests are not answered, and a request of Modbus ASCII is.",
         "Set the slave's serial port to RTU."},
        {Kind::Tls, "tls", Weight::Explains,
         "What comes, or what answers the beginning of an encrypted connection, is a record of TLS.",
         "This port is encrypted: use the port of the serial line, or switch encryption off there."},
        {Kind::Http, "http", Weight::Explains, "What comes, or what answers a request for a page, is HTTP.",
         "This is the port of web pages: use the port of the serial line."},
        {Kind::Ssh, "ssh", Weight::Explains, "The other side greets with the version of SSH.",
         "This is the port of remote shells: use the port of the serial line."},
        {Kind::TextBanner, "text-banner", Weight::Explains,
         "The other side sends readable text or telnet's codes, and answers no request.",
         "This is the port of another service, such as a console: use the port of the serial line."},
        {Kind::ConnectionEnds, "connection-ends", Weight::Open,
         "The other side ends the connection after a request, and nothing tells why.",
         "Look which protocol and how many connections the port is set to, and at the gateway's log."},
        {Kind::WrongStation, "wrong-station", Weight::Explains,
         "The station is silent, and another answers. Those from 1 to 10 and 247 are asked.",
         "Use the station that answers, or set the slave's."},
        {Kind::StationAbsent, "station-absent", Weight::Explains,
         "The gateway itself answers, with exception 10 or 11, and no station that was asked is there.",
         "The gateway works: check the slave's power, its station, the wiring, speed and parity of the "
         "serial "
         "line, and that the gateway waits long enough."},
        {Kind::AnswersAsOther, "answers-as-other", Weight::Explains,
         "The replies to the station asked carry another station, and nobody talks when nothing is asked.",
         "Use the station that the replies carry if it answers as well; otherwise set the gateway not to "
         "change stations."},
        {Kind::Silent, "silent", Weight::Open,
         "The connection stands, and nothing of what was sent is answered by anybody.",
         "Check wiring (A and B), speed, parity and stop bits of the serial line and the slave's station; "
         "\"driverhost scan TARGET stations\" asks all of them. A gateway whose only connection another "
         "master holds is silent too."},
        {Kind::LateAnswers, "late-answers", Weight::Explains,
         "Replies come later than the time-out allows, or 0.1 % of them will by the measured distribution.",
         "Use a time-out of what 99.9 % of the replies need and half as much again."},
        {Kind::NeedsPause, "needs-pause", Weight::Explains,
         "Requests right after a reply are not answered, and those after a pause are.",
         "Let the driver pause before every attempt (--delay)."},
        {Kind::LostReplies, "lost-replies", Weight::Explains,
         "Some requests are not answered, whether they come after a pause or not.",
         "Check the radio or mobile network, the wiring and termination of the serial line, and whether "
         "another master talks at the same time; retries help meanwhile."},
        {Kind::ConnectionDrops, "connection-drops", Weight::Explains,
         "The other side ends connections while a reply is waited for, and answers other requests.",
         "Look whether another master takes the gateway's only connection, and at the mobile network and the "
         "gateway's "
         "power; retries help meanwhile."},
        {Kind::BeginningDamaged, "beginning-damaged", Weight::Explains,
         "Replies have a wrong CRC, and what is wrong are their first bytes.",
         "The line is switched too late: check the delay between sending and receiving of the converter and "
         "the slave, and the bias of the line."},
        {Kind::EndDamaged, "end-damaged", Weight::Explains,
         "Replies have a wrong CRC or are cut, and what is wrong are their last bytes.",
         "The line is released too early, or the gateway cuts: check the slave's and the converter's sending "
         "time, and the gateway's packing time and packet size."},
        {Kind::AnywhereDamaged, "anywhere-damaged", Weight::Explains,
         "Replies have a wrong CRC, and what is wrong lies anywhere in them.",
         "Noise: check screen, termination, the distance to power cables, and a common ground; retries help "
         "meanwhile."},
        {Kind::Garbled, "garbled", Weight::Explains,
         "Something comes after every request and nothing of it is a frame.",
         "Speed, parity or stop bits of the gateway's serial port are not the slave's."},
        {Kind::FunctionUnknown, "function-unknown", Weight::Explains,
         "The station answers, and refuses the function that reads the area with exception 1.",
         "Read an area that the slave knows; its manual may count its registers in another area."},
        {Kind::AreaEmpty, "area-empty", Weight::Explains,
         "The station answers, and refuses every address of the area that was tried with exception 2.",
         "Read an area that has something; \"driverhost scan TARGET HR\" and the like find what a slave "
         "has."},
        {Kind::AddressMissing, "address-missing", Weight::Explains,
         "The address is refused with exception 2, and others of the area are not.",
         "Check the address in the slave's manual, and whether it counts from 0 or 1; \"driverhost scan "
         "TARGET HR\" finds what is there."},
        {Kind::DeviceRefuses, "device-refuses", Weight::Explains,
         "The station answers, and refuses what it was asked, always or now and then, with an exception of a "
         "device "
         "that cannot at the moment.",
         "The line is in order: look at the slave's own state, its display, its log and its release for "
         "remote reading."},
        {Kind::OffByOne, "off-by-one", Weight::Explains,
         "The expected values stand one address further on, or one before, and not where they were expected.",
         "The list counts otherwise than the driver, which counts from 1: shift all its addresses."},
        {Kind::WordOrder, "word-order", Weight::Explains,
         "The expected values are there when their bytes are put together in another order.",
         "Name the order, such as ABCD, after the type or in the column order."},
        {Kind::OtherArea, "other-area", Weight::Explains,
         "The expected values stand at the same addresses of another area.", "Use the letters of that area."},
        {Kind::Scaled, "scaled", Weight::Explains, "The expected values are there but for one factor of ten.",
         "Use the factor, in the column scale of a table of points."},
        {Kind::AmbiguousValues, "ambiguous-values", Weight::Open,
         "The values that were read are not the expected ones, and more than one change would explain that.",
         "Give more values, or others: ones that are neither 0 nor the same as their neighbours."},
        {Kind::OtherValues, "other-values", Weight::Open,
         "The values that were read are not the expected ones, and neither another address beside it nor "
         "another order, area or factor explains that.",
         "Check the addresses, types and values in the slave's manual and on its display."},
        {Kind::OtherMaster, "other-master", Weight::Explains,
         "Whole frames come that answer nothing which was asked here, while nothing is asked or in front of "
         "replies.",
         "Find the other master and give one of the two its own line, or let the gateway keep them apart. "
         "Two masters that ask the same station cannot tell their replies apart."},
        {Kind::Echo, "echo", Weight::Explains, "The request comes back in front of the reply, or alone.",
         "Switch the echo off at the converter of the two-wire line; the driver lives with it, but a reply "
         "to "
         "a write cannot be told from its echo."},
        {Kind::StrayBytes, "stray-bytes", Weight::Explains,
         "Bytes come that are no frame, in front of replies, after them or now and then, and without the "
         "order of a registration or heartbeat packet.",
         "Check the bias and termination of the serial line, and switch packets of the gateway's own off."},
        {Kind::Gaps, "gaps", Weight::Explains, "Replies come in parts with more than 50 ms between them.",
         "Set the gateway's packing time (also called inter-character or frame time-out) to some characters' "
         "length, and its packet size to 256 bytes at least; the time-out counts for each part."},
        {Kind::Registration, "registration", Weight::Explains,
         "The first thing that comes on every connection, before anything is sent, is the same and no frame.",
         "Switch the registration packet off in the gateway. The driver throws it away."},
        {Kind::Heartbeat, "heartbeat", Weight::Explains,
         "The same bytes come again and again at one interval and are no frame.",
         "Switch the heartbeat packet off in the gateway. The driver throws it away, but one that comes "
         "within a reply spoils it."},
        {Kind::IdleClose, "idle-close", Weight::Explains,
         "The other side ends a connection on which nothing has been asked for some seconds.",
         "Raise the gateway's idle time above the interval between readings, or read more often."},
        {Kind::Timing, "timing", Weight::Remark, "How long replies took.", "-"},
        {Kind::Areas, "areas", Weight::Remark, "Which areas were readable where they were tried.", "-"},
        {Kind::LargestRequest, "largest-request", Weight::Remark,
         "The longest read that was answered, found by halving.", "-"},
        {Kind::Functions, "functions", Weight::Remark,
         "Whether function 8 is answered; with --probe-writes also 6 and 16, 5 and 15, by writing back what "
         "was "
         "read just before.",
         "-"},
        {Kind::OutOfTime, "out-of-time", Weight::Remark,
         "What was not examined, since it would have taken too long.", "-"},
    };
    return infos;
}

const FindingInfo &infoOf(FindingKind kind)
{
    const std::vector<FindingInfo> &infos = findingInfos();
    return *std::find_if(infos.begin(), infos.end(),
                         [kind](const FindingInfo &info) { return info.kind == kind; });
}

QString nameOf(Weight weight)
{
    switch (weight) {
    case Weight::Explains: return QStringLiteral("explains");
    case Weight::Open: return QStringLiteral("open");
    case Weight::Remark: break;
    }
    return QStringLiteral("remark");
}

QString Finding::name() const
{
    return QLatin1String(infoOf(kind).name);
}

int retriesFor(double share)
{
    const double left = 0.001;
    const double mostShare = 0.9;
    const int most = 20;
    return std::clamp(static_cast<int>(std::ceil(std::log(left) / std::log(std::min(share, mostShare)))), 1,
                      most);
}
