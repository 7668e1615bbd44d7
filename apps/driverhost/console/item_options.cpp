#include "apps/driverhost/console/item_options.h"

#include "desk/items/number_text.h"

namespace
{

Items rawItems(const QString &text, const ItemOptions &options, int count)
{
    Items items;
    items.rawText = text.isNull() ? QStringLiteral("") : text;
    items.kind = options.kind.value_or(WordItem);
    items.count = count;
    return items;
}

ItemKind kindAt(const Address &address, const ItemOptions &options)
{
    if (options.kind)
        return *options.kind;
    const bool isDouble = options.form == ValueForm::Float || address.highWordFirst;
    return isDouble && !address.isBitArea() && address.bit < 0 ? DoubleWordItem : defaultKind(address);
}

QString problemWith(const Items &items, const ItemOptions &options)
{
    if (options.form == ValueForm::Float && items.kind != DoubleWordItem)
        return QStringLiteral("a float is two registers; expected the kind dword");
    if (options.highWordFirst && items.kind != DoubleWordItem)
        return QStringLiteral(
            "--word-order is for double words; expected --kind dword or --as float besides");
    if (options.highWordFirst == false && items.address.highWordFirst)
        return QStringLiteral("SW in the address says the high word first, and --word-order the low one");
    return {};
}

Error at(const Address &address, const QString &problem)
{
    return {QStringLiteral("address \"%1\": %2").arg(address.label(), problem)};
}

Result<TypedItems> untypedItems(const Address &address, const ItemOptions &options, int count)
{
    Items items;
    items.address = address;
    items.kind = kindAt(address, options);
    items.count = count;
    const QString problem = problemWith(items, options);
    if (!problem.isEmpty())
        return at(address, problem);
    items.highWordFirst = options.highWordFirst.value_or(false);
    const Result<> check = checkItems(items);
    if (!check)
        return check.error();
    return typedItems(items, options.form);
}

// What the options make of the items is a type as well.
Result<TypedItems> orderedItems(const Address &address, const QString &order, const ItemOptions &options,
                                int count)
{
    Result<TypedItems> typed =
        typedItems(address, typeOf(kindAt(address, options), options.form), count, order);
    if (typed && options.highWordFirst.value_or(typed->order.isHighWordFirst) != typed->order.isHighWordFirst)
        return at(address,
                  QStringLiteral("the order \"%1\" and --word-order say different things").arg(order));
    return typed;
}

// In bits; texts take whole registers.
int sizeOf(const ValueType &type)
{
    return type.isText() ? type.registers() * modbus::RegisterBits : type.bits;
}

// A range says itself how many it has.
Result<int> countOf(const AddressSpan &span, int bits, const QString &name, std::optional<int> given)
{
    if (!span.isRange)
        return given.value_or(1);
    Result<int> count = countIn(span, bits, name);
    if (!count || !given || *given == *count)
        return count;
    return Error{QStringLiteral("\"%1..%2\" holds %3, and not %4")
                     .arg(span.first.label(), QString::number(span.last), counted(*count, "item"),
                          QString::number(*given))};
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
            QStringLiteral("How many items from each address on (default 1, or what a range holds)."),
            QStringLiteral("N")};
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
    if (options.isRaw && line.isSet("word-order"))
        line.addError(
            QStringLiteral("--raw hands addresses on as they stand; write SW into them for --word-order"));
    if (line.isSet("word-order"))
        options.highWordFirst =
            line.choice("word-order", {QStringLiteral("low"), QStringLiteral("high")}) == 1;
    return options;
}

Result<TypedItems> itemsAt(const QString &text, const ItemOptions &options, const ItemCounts &counts)
{
    if (options.isRaw)
        return typedItems(rawItems(text, options, counts.untyped.value_or(1)), options.form);
    const Result<TypedText> typed = parseTypedText(text);
    if (!typed)
        return typed.error();
    const Result<AddressSpan> span = parseAddressSpan(typed->address);
    if (!span)
        return span.error();
    if (typed->type) {
        const Result<int> count = countOf(*span, sizeOf(*typed->type), nameOf(*typed->type),
                                          typed->count ? typed->count : counts.typed);
        return count ? typedItems(span->first, *typed->type, *count, typed->order) : count.error();
    }
    const ItemKind kind = kindAt(span->first, options);
    const Result<int> count = countOf(*span, widthOf(kind), nameOf(kind), counts.untyped);
    if (!count)
        return count.error();
    if (!typed->order.isEmpty())
        return orderedItems(span->first, typed->order, options, *count);
    return untypedItems(span->first, options, *count);
}
