#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/console/item_options.h"
#include "apps/driverhost/console/messages.h"
#include "desk/items/readings.h"
#include "desk/link/session.h"
#include "desk/output/output_form.h"

namespace
{

const CommandLine::Texts Texts = {
    "read",
    "[rtutcp://HOST:PORT/STATION] ADDRESS...",
    "Reads values through the driver. Addresses are HR100, FN6HR12 (holding registers), IR3 (input "
    "registers),\n"
    "DI17 (discrete inputs), DO5, FN5DO5 (coils) and HR7.3 (a bit of a register); numbers count from 1. "
    "2-HR100 is\n"
    "HR100 of station 2, HRSW10 a double word with its high word first. Values go to standard output, "
    "everything\n"
    "else to standard error.",
    "  driverhost read rtutcp://192.168.0.10:502/1 HR100 --count 4 --as hex\n"
    "  driverhost read --host gateway --station 2 DI17 HR7.3 IR1",
};

// The rows of everything that could be read; the first failure decides the exit code.
int readAll(Session &session, const std::vector<Reading> &readings, OutputFormat format)
{
    int code = Success;
    std::vector<ValueRow> rows;
    for (const Reading &reading : readings) {
        const int station = session.stationFor(reading.items);
        reportBroadcast(station);
        if (const std::optional<QByteArray> data = session.read(reading.items)) {
            const std::vector<ValueRow> more = rowsOf(reading, *data, station);
            rows.insert(rows.end(), more.begin(), more.end());
            reportOddSuccess(session, labelOf(reading));
            continue;
        }
        reportFailure(session, labelOf(reading));
        const ExitCode failure = exitCodeOf(session.failure());
        code = code == Success ? failure : code;
        if (failure == CannotConnect || failure == DatabaseError)
            break;
    }
    const bool isPrinted = rows.empty() || print(linesOf(rows, format));
    return isPrinted ? code : OutputClosed;
}

} // namespace

Job prepareRead(const QStringList &arguments)
{
    CommandLine line(Texts);
    line.addOptions(itemOptions());
    line.addOptions({itemCountOption({QStringLiteral("count")}), formatOption()});
    line.addOptions(linkOptions());
    if (const std::optional<int> end = line.parse(arguments))
        return *end;

    const AddressedItems addressed = addressedItems(line, "count");
    const OutputFormat format = formatOf(line);
    if (!line.isValid())
        return line.reportUsageError();
    return {addressed.link, addressed.tags, [=](Session &session) {
                reportPortions(addressed.items);
                return readAll(session, readingsOf(addressed.items, addressed.form), format);
            }};
}
