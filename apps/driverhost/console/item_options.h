#pragma once

#include "apps/driverhost/console/command_line.h"
#include "desk/items/typed_items.h"
#include "desk/output/fields.h"

/// What the addresses on the command line stand for.
struct ItemOptions {
    std::optional<ItemKind> kind; ///< otherwise what each address suggests
    ValueForm form = ValueForm::Unsigned;
    std::optional<bool> highWordFirst; ///< otherwise what each address says
    bool isRaw = false;
};

QList<QCommandLineOption> itemOptions();
/// Those of them that make sense for tags.
QList<QCommandLineOption> tagOptions();
/// The option for the number of items, "items", and \a names besides.
QCommandLineOption itemCountOption(const QStringList &names = {});

QCommandLineOption formatOption();
OutputFormat formatOf(CommandLine &line);

/// What is wrong is noted in \a line.
ItemOptions itemOptionsOf(CommandLine &line);
/// How many values are meant where the text does not say; nothing: one, or as many as a range holds.
struct ItemCounts {
    std::optional<int> untyped;
    std::optional<int> typed;
};

/// The values that \a text stands for, ADDRESS[:TYPE[xCOUNT]][@ORDER]; the options count where there is no
/// type. The error says what was expected.
Result<TypedItems> itemsAt(const QString &text, const ItemOptions &options, const ItemCounts &counts);
