#pragma once

#include "desk/items/item_kind.h"
#include "host/communicator_command.h"

/// What a read or a write is about: some items of one kind, one after the other from an address on.
struct Items {
    Address address;
    ItemKind kind = WordItem;
    int count = 1;
    /// Of double words, also when the address does not say so.
    bool highWordFirst = false;
    /// Handed to the driver as it stands, unchecked; the address above is empty then.
    QString rawText;

    bool isRaw() const { return !rawText.isNull(); }
    /// The address of item \a index.
    Address addressOf(int index) const;
    /// What people see for item \a index: "HR100", "2-HR100" where the address names its station, "HR100
    /// high" for the odd bytes of registers.
    QString label(int index) const;
    CommunicatorCommand command() const;
};

/// The station in the items' address, or \a linkStation when it names none.
int stationOf(const Items &items, int linkStation);

/// How many bits, or registers, of the area the items lie on.
qint64 extentOf(const Items &items);

/// How many items of so many bits a range holds; where they do not fill it the error calls them \a name.
Result<int> countIn(const AddressSpan &span, int bits, const QString &name);

/// Whether there are such items at such an address, none of them beyond the end of the area.
Result<> checkItems(const Items &items);
