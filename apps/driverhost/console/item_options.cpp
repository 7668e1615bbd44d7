#include "apps/driverhost/console/item_options.h"

#include "desk/project/needed_tags.h"

namespace
{

Items rawItems(const QString &text, const ItemOptions &options)
{
    Items items;
    items.rawText = text.isNull() ? QStringLiteral("") : text;
    items.kind = options.kind.value_or(WordItem);
    items.count = options.count;
    return items;
}

ItemKind kindAt(const Address &address, const ItemOptions &options)
{
    if (options.kind)
        return *options.kind;
    const bool isDouble = options.form == ValueForm::Float || address.highWordFirst || options.highWordFirst;
    return isDouble && !address.isBitArea() && address.bit < 0 ? DoubleWordItem : defaultKind(address);
}

QString problemWith(const Items &items, const ItemOptions &options)
{
    if (options.form == ValueForm::Float && items.kind != DoubleWordItem)
        return QStringLiteral("a float is two registers; expected the kind dword");
    if (options.highWordFirst && items.kind != DoubleWordItem)
        return QStringLiteral("--word-order is for double words");
    if (options.highWordFirst == false && items.address.highWordFirst)
        return QStringLiteral("SW in the address says the high word first, and --word-order the low one");
    return {};
}

} // namespace

QList<QCommandLineOption> tagOptions()
{
    return {
        {QStringLiteral("kind"),
         QStringLiteral(
             "Kind of item: bit, byte, word, dword, block (bytes) or bit2 (default: bit for DI, DO and "
             "addresses with a bit, word for other registers, dword for floats)."),
         QStringLiteral("KIND")},
        {QStringLiteral("as"),
         QStringLiteral(
             "How numbers are written: unsigned, signed, hex, binary or float (default unsigned)."),
         QStringLiteral("FORM"), QStringLiteral("unsigned")},
    };
}

QList<QCommandLineOption> itemOptions()
{
    return tagOptions() +
           QList<QCommandLineOption>{
               {QStringLiteral("word-order"),
                QStringLiteral(
                    "Which word of a dword has the lower register number: low or high (default low, or "
                    "high where the address says SW)."),
                QStringLiteral("ORDER")},
               {QStringLiteral("raw"),
                QStringLiteral("Hand addresses to the driver as they stand, unchecked.")},
           };
}

QCommandLineOption itemCountOption(const QStringList &names)
{
    return {names + QStringList{QStringLiteral("items")},
            QStringLiteral("How many items from each address on (default 1)."), QStringLiteral("N"),
            QStringLiteral("1")};
}

QCommandLineOption formatOption()
{
    return {QStringLiteral("format"),
            QStringLiteral("Form of the output: text, csv or json, one object a line (default text)."),
            QStringLiteral("FORMAT"), QStringLiteral("text")};
}

OutputFormat formatOf(CommandLine &line)
{
    return static_cast<OutputFormat>(line.choice("format", outputFormatNames()));
}

ItemOptions itemOptionsOf(CommandLine &line)
{
    ItemOptions options;
    options.isRaw = line.isSet("raw");
    options.form = static_cast<ValueForm>(line.choice("as", valueFormNames()));
    if (line.isSet("kind")) {
        options.kind = kindNamed(line.text("kind"));
        if (!options.kind)
            line.addError(QStringLiteral("--kind \"%1\": expected bit, byte, word, dword, block or bit2")
                              .arg(line.text("kind")));
    }
    if (line.isSet("word-order"))
        options.highWordFirst =
            line.choice("word-order", {QStringLiteral("low"), QStringLiteral("high")}) == 1;
    return options;
}

Items itemsAt(const QString &text, const ItemOptions &options, CommandLine &line)
{
    if (options.isRaw)
        return rawItems(text, options);
    Items items;
    const Result<Address> address = parseAddress(text);
    if (!address) {
        line.addError(address.errorText());
        return items;
    }
    items.address = *address;
    items.kind = kindAt(*address, options);
    items.count = options.count;
    const QString problem = problemWith(items, options);
    if (!problem.isEmpty())
        line.addError(QStringLiteral("address \"%1\": %2").arg(text, problem));
    items.highWordFirst = options.highWordFirst.value_or(false);
    const Result<> check = checkItems(items);
    if (!check)
        line.addError(check.errorText());
    return items;
}

AddressedItems addressedItems(CommandLine &line, const char *countOption)
{
    AddressedItems addressed;
    QStringList words = line.words();
    addressed.link = linkSettings(line, words);
    ItemOptions options = itemOptionsOf(line);
    options.count = line.number(countOption, 1, modbus::AddressSpace);
    addressed.form = options.form;
    for (const QString &word : qAsConst(words)) {
        const Items items = itemsAt(word, options, line);
        addressed.items.push_back(items);
        addressed.tags += neededTags(items, stationOf(items, addressed.link.channel.station));
    }
    if (words.isEmpty())
        line.addError(QStringLiteral("no address; expected one such as HR100"));
    return addressed;
}
