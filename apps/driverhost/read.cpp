#include "commands.h"

#include "item_options.h"
#include "messages.h"
#include "session.h"
#include "value_output.h"

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

struct ReadOptions {
    ValueForm form;
    OutputFormat format;
};

int exitCodeAfter(int code, int newCode)
{
    return code == Success ? newCode : code;
}

// The rows of everything that could be read; the first failure decides the exit code.
int readAll(Session &session, const std::vector<Items> &all, const ReadOptions &options)
{
    int code = Success;
    std::vector<ValueRow> rows;
    for (const Items &items : all) {
        warnOfBroadcast(session.stationFor(items));
        const std::vector<Items> requests = requestsFor(items);
        if (requests.size() > 1)
            tell(QStringLiteral("%1: %2 items are more than one request carries; reading them in %3 portions")
                     .arg(items.label(0), QString::number(items.count), QString::number(requests.size())));
        for (const Items &request : requests) {
            const std::optional<QByteArray> data = session.read(request);
            if (data) {
                const auto more = rowsOf(request, *data, session.stationFor(request), options.form);
                rows.insert(rows.end(), more.begin(), more.end());
                continue;
            }
            tellFailure(session, request);
            code = exitCodeAfter(code, session.failure());
            break;
        }
        if (code == CannotConnect || code == DatabaseError)
            break;
    }
    const bool isPrinted = rows.empty() || print(linesOf(rows, options.format));
    return isPrinted ? code : OutputClosed;
}

QStringList allTags(const std::vector<Items> &all, int station)
{
    QStringList tags;
    for (const Items &items : all)
        tags += tagsFor(items, stationOf(items, station));
    return tags;
}

} // namespace

int runRead(const QStringList &arguments)
{
    CommandLine line(Texts);
    line.addOptions(itemOptions());
    line.addOptions({itemCountOption({QStringLiteral("count")}), formatOption()});
    line.addOptions(linkOptions());
    if (const std::optional<int> end = line.parse(arguments))
        return *end;

    QStringList words = line.words();
    const LinkSettings link = linkSettings(line, words);
    ItemOptions itemOptions = itemOptionsOf(line);
    itemOptions.count = line.number("items", 1, MostItems);
    const ReadOptions options{itemOptions.form, formatOf(line)};
    std::vector<Items> all;
    for (const QString &word : qAsConst(words))
        all.push_back(itemsAt(word, itemOptions, line));
    if (words.isEmpty())
        line.mistake(QStringLiteral("no address; expected one such as HR100"));
    if (!line.isRight())
        return line.refuse();

    return runWithDriver(link, allTags(all, link.channel.station),
                         [&](Session &session) { return readAll(session, all, options); });
}
