#pragma once

#include "apps/driverhost/console/command_line.h"
#include "apps/driverhost/console/link_options.h"
#include "desk/items/items.h"
#include "desk/items/value_form.h"
#include "desk/output/fields.h"

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

/// What is wrong is noted in \a line.
ItemOptions itemOptionsOf(CommandLine &line);
/// The items at the address \a text; what is wrong is noted in \a line.
Items itemsAt(const QString &text, const ItemOptions &options, CommandLine &line);

/// Everything that a command line of a target, addresses and their options says.
struct AddressedItems {
    LinkSettings link;
    std::vector<Items> items;
    QStringList tags; ///< that a project needs for them
    ValueForm form = ValueForm::Unsigned;
};
AddressedItems addressedItems(CommandLine &line, const char *countOption = "items");
