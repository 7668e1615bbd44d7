#pragma once

#include "command_line.h"
#include "items.h"
#include "link_options.h"
#include "value_output.h"

const int MostItems = 65536;

/// What the addresses on the command line stand for.
struct ItemOptions {
    std::optional<ItemKind> kind; ///< otherwise what each address suggests
    int count = 1;
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

/// Mistakes are noted in \a line.
ItemOptions itemOptionsOf(CommandLine &line);
/// The items at the address \a text; a mistake is noted in \a line.
Items itemsAt(const QString &text, const ItemOptions &options, CommandLine &line);

/// Everything that a command line of a target, addresses and their options says.
struct AddressedItems {
    LinkSettings link;
    std::vector<Items> items;
    QStringList tags; ///< that a project needs for them
    ValueForm form = ValueForm::Unsigned;
};
AddressedItems addressedItems(CommandLine &line, const char *countOption = "items");
