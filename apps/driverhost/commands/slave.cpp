#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/commands/slave_options.h"
#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/console/stop_signal.h"
#include "desk/items/target.h"
#include "desk/slave/embedded_slave.h"

#include <QCoreApplication>
#include <QTextStream>

namespace
{

const CommandLine::Texts Texts = {
    "slave",
    "",
    "A Modbus slave that speaks RTU framing over TCP, to try things against: functions 1 to 6, 8, 15 and 16 "
    "on\n"
    "65536 addresses of each area, all 0 at first. Ctrl-C ends it and prints what it did.\n"
    "\n"
    "The file of --values has lines such as\n"
    "  HR100 = 1 -2 0x1F     the address counts from 1; values from there on\n"
    "  2-DO1 = 1 0 1         of station 2 only\n"
    "  hole IR200..299       addresses that do not exist\n"
    "\n"
    "Faults of --fault; the number after the colon may be left out:\n"
    "  silence               no reply\n"
    "  delay:MS              the reply comes so many milliseconds late\n"
    "  truncate:BYTES        only so many bytes of it\n"
    "  wrong-station:ID      in the name of another station\n"
    "  wrong-function:CODE   with another function\n"
    "  wrong-crc             one bit of the CRC is wrong\n"
    "  exception:CODE        refused, and not executed\n"
    "  junk-before:BYTES     noise in front of the reply\n"
    "  junk-after:BYTES      noise after it\n"
    "  split:MS              one byte a segment, so many milliseconds apart\n"
    "  merge                 held back and sent in one segment with the next reply\n"
    "  double                twice in one segment\n"
    "  stale                 the reply before it comes once more, in front\n"
    "  echo                  the request comes back in front of the reply\n"
    "  other-master:ID       the reply of another station comes in front of it\n"
    "  late:MS               it comes so much later, on the connection of then\n"
    "  reset, close          the connection is reset, or closed, instead\n"
    "  half-open             the connection stays up, and nothing more happens",
    "  driverhost slave --port 1502 --values plant.txt\n"
    "  driverhost slave --station 1-3 --latency 20 --fault silence=1% --fault truncate:4=1/10 --trace",
};

int serve(const SlaveOptions &options)
{
    EmbeddedSlave slave(options);
    if (!slave.listen()) {
        reportError(QStringLiteral("cannot listen on %1: %2")
                        .arg(endpointText(options.address.toString(), options.port), slave.errorString()));
        return OtherFailure;
    }
    StopSignal signal;
    QObject::connect(&signal, &StopSignal::stop, qApp, &QCoreApplication::quit);
    QTextStream output(stdout);
    output << "listening on " << endpointText(options.address.toString(), slave.port()) << ", Ctrl-C ends\n";
    output.flush();
    QCoreApplication::exec();
    output << describeCounts(slave.counts());
    return Success;
}

} // namespace

Job prepareSlave(const QStringList &arguments)
{
    CommandLine line(Texts);
    line.addOptions(slaveCommandOptions());
    if (const std::optional<int> end = line.parse(arguments))
        return *end;
    const SlaveOptions options = slaveOptions(line);
    return line.isValid() ? serve(options) : line.reportUsageError();
}
