#pragma once

#include "apps/driverhost/console/item_options.h"

/// What a command line of `write` asks for.
struct WriteRequest {
    Items items;
    ValueForm form = ValueForm::Unsigned;
    std::vector<quint32> values;
};

/// Reads an address and its values; what is wrong is noted in \a line.
WriteRequest writeRequest(const QStringList &words, const ItemOptions &options, CommandLine &line);

/// Why the items cannot be broadcast; empty when they can.
QString problemWithBroadcast(const Items &items);
