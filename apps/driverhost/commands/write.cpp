#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/console/item_options.h"
#include "apps/driverhost/console/messages.h"
#include "desk/items/item_data.h"
#include "desk/items/number_text.h"
#include "desk/items/portions.h"
#include "desk/link/dry_run_channel.h"
#include "desk/link/write_report.h"
#include "desk/project/needed_tags.h"
#include "desk/wire/frame_text.h"

namespace
{

const CommandLine::Texts Texts = {
    "write",
    "[rtutcp://HOST:PORT/STATION] ADDRESS VALUE...",
    "Writes values through the driver, from the address on. HR writes with function 16, FN6HR register by "
    "register\n"
    "with function 6, DO with function 15, FN5DO coil by coil with function 5; HR7.3 changes bits of "
    "registers.\n"
    "What does not fit the item is refused before anything is sent.",
    "  driverhost write rtutcp://192.168.0.10:502/1 HR100 1234 -5 --verify\n"
    "  driverhost write HR20 3.5 --as float --word-order high",
};

QString problemWith(const Items &items)
{
    if (isInputArea(items.address.area))
        return QStringLiteral("%1 is an input and cannot be written").arg(items.address.areaName);
    if (items.address.isBitArea() && isByteKind(items.kind))
        return QStringLiteral("%1 is written bit by bit; expected the kind bit").arg(items.address.areaName);
    const int max = items.address.isBitArea() ? modbus::MaxWriteCoils : modbus::MaxWriteRegisters;
    if (extentOf(items) > max)
        return QStringLiteral("one request writes %1 %2 at most")
            .arg(QString::number(max),
                 items.address.isBitArea() ? QStringLiteral("coils") : QStringLiteral("registers"));
    return {};
}

// The driver ends at the first request that nobody answers: a broadcast is one request.
QString problemWithBroadcast(const Items &items, bool isVerified)
{
    if (isVerified)
        return QStringLiteral("--verify reads, and nobody replies to station 0");
    if (!items.isRaw() && !items.address.isBitArea() && isBitKind(items.kind))
        return QStringLiteral("bits of a register are read before they are written, and nobody replies to "
                              "station 0");
    if (items.address.areaName.startsWith(QLatin1String("FN")) && extentOf(items) > 1)
        return QStringLiteral("%1 takes a request for each item, and to station 0 only the first would be "
                              "sent; use %2")
            .arg(items.address.areaName, items.address.areaName.right(2));
    return {};
}

struct WriteRequest {
    Items items;
    ValueForm form = ValueForm::Unsigned;
    std::vector<quint32> values;
};

WriteRequest writeRequest(const QStringList &words, const ItemOptions &options, CommandLine &line)
{
    WriteRequest request;
    if (words.size() < 2) {
        line.addError(QStringLiteral("expected an address and at least one value"));
        return request;
    }
    ItemOptions itemOptions = options;
    itemOptions.count = int(words.size()) - 1;
    request.items = itemsAt(words.first(), itemOptions, line);
    request.form = options.form;
    for (const QString &word : words.mid(1)) {
        const Result<quint32> value = parseValue(word, request.items.kind, options.form);
        if (!value)
            line.addError(value.errorText());
        request.values.push_back(value.valueOr(0));
    }
    const QString problem = request.items.isRaw() ? QString() : problemWith(request.items);
    if (!problem.isEmpty())
        line.addError(QStringLiteral("address \"%1\": %2").arg(words.first(), problem));
    return request;
}

// Whether the slave holds what was written.
int verify(Session &session, const WriteRequest &request)
{
    std::vector<quint32> read;
    for (const Items &portion : portionsOf(request.items)) {
        const std::optional<QByteArray> data = session.read(portion);
        if (!data) {
            reportFailure(session, portion.label(0));
            return exitCodeOf(session.failure());
        }
        const std::vector<quint32> values = valuesIn(*data, portion);
        read.insert(read.end(), values.begin(), values.end());
    }
    int code = Success;
    for (size_t i = 0; i < read.size(); ++i) {
        if (read[i] == request.values[i])
            continue;
        reportError(QStringLiteral("%1: wrote %2, read back %3")
                        .arg(request.items.label(static_cast<int>(i)),
                             formatValue(request.values[i], request.items.kind, request.form),
                             formatValue(read[i], request.items.kind, request.form)));
        code = NotVerified;
    }
    if (code == Success)
        report(QStringLiteral("%1: verified").arg(request.items.label(0)));
    return code;
}

bool isExpectedSilence(Session &session, int station)
{
    return station == modbus::BroadcastStation && session.failure().kind == FailureKind::NoReply &&
           !writtenBeforeFailure(session.exchanges()).isEmpty();
}

int writeAll(Session &session, const WriteRequest &request, bool isVerified)
{
    const bool isConfirmed = session.write(request.items, dataOf(request.values, request.items.kind));
    if (!isConfirmed && isExpectedSilence(session, session.stationFor(request.items))) {
        report(QStringLiteral("%1: sent; no reply, as expected of a broadcast").arg(request.items.label(0)));
        return Success;
    }
    if (!isConfirmed) {
        const QStringList written = writtenBeforeFailure(session.exchanges());
        reportFailure(session, request.items.label(0));
        for (const QString &line : written)
            report(QStringLiteral("  ") + line);
        return exitCodeOf(session.failure());
    }
    reportOddSuccess(session, request.items.label(0));
    report(
        QStringLiteral("%1: wrote %2 of kind %3")
            .arg(request.items.label(0), counted(request.items.count, "item"), nameOf(request.items.kind)));
    return isVerified ? verify(session, request) : Success;
}

// The frames that a write would send.
int showFrames(Session &session, const WriteRequest &request)
{
    DryRunChannel channel(session.stationFor(request.items), session.channel().deviceSetting()->deviceString);
    const QByteArray data = dataOf(request.values, request.items.kind);
    if (!session.driver()->write(&channel, request.items.command(), data)) {
        reportFailure(session, request.items.label(0));
        return exitCodeOf(session.failure());
    }
    QStringList lines;
    for (const QByteArray &frame : channel.requests())
        lines += QString::fromLatin1(frame.toHex(' ').toUpper()) + QStringLiteral("  ") +
                 describeFrame(FrameRole::Request, frame);
    report(QStringLiteral("%1: nothing is sent; the frames would be").arg(request.items.label(0)));
    if (!request.items.address.isBitArea() && isBitKind(request.items.kind))
        report(QStringLiteral("  (the other bits of the registers as they are read, here 0)"));
    return print(lines) ? Success : OutputClosed;
}

} // namespace

Job prepareWrite(const QStringList &arguments)
{
    CommandLine line(Texts);
    line.addOptions(itemOptions());
    line.addOptions({
        {QStringLiteral("verify"), QStringLiteral("Read back what was written and compare.")},
        {QStringLiteral("dry-run"), QStringLiteral("Show the frames and send nothing.")},
    });
    line.addOptions(linkOptions());
    if (const std::optional<int> end = line.parse(arguments))
        return *end;

    QStringList words = line.words();
    LinkSettings link = linkSettings(line, words);
    const WriteRequest request = writeRequest(words, itemOptionsOf(line), line);
    const bool isVerified = line.isSet("verify");
    const bool isDryRun = line.isSet("dry-run");
    const int station = stationOf(request.items, link.channel.station);
    const QString problem =
        station == modbus::BroadcastStation ? problemWithBroadcast(request.items, isVerified) : QString();
    if (!problem.isEmpty())
        line.addError(problem);
    if (!line.isValid())
        return line.reportUsageError();

    if (station == modbus::BroadcastStation)
        link.channel.retries = 0;
    return {link, neededTags(request.items, station), [=](Session &session) {
                if (isDryRun)
                    return showFrames(session, request);
                reportBroadcast(station);
                return writeAll(session, request, isVerified);
            }};
}
