#pragma once

#include "address.h"
#include "drivers/tools/command_data.h"
#include "host/communicator_command.h"

#include <QByteArray>

#include <vector>

/// What a read or a write is about: some items of one kind, one behind the other from an address on.
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
    /// What people see for item \a index: "HR100", or "HR100 high" for the odd bytes of registers.
    QString label(int index) const;
    CommunicatorCommand command() const;
};

/// "bit", "byte", "word", "dword", "block", "bit2"; nothing for other texts.
std::optional<ItemKind> kindNamed(const QString &name);
QString nameOf(ItemKind kind);
/// The kind that an address suggests: bits, or words for whole registers.
ItemKind usualKind(const Address &address);
bool isBitKind(ItemKind kind);
bool isByteKind(ItemKind kind);

/// The station in the items' address, or \a usual when it names none.
int stationOf(const Items &items, int usual);

/// How many bits, or registers, of the area the items lie on.
qint64 extentOf(const Items &items);

/// Whether there are such items at such an address, none of them beyond the end of the area.
bool checkItems(const Items &items, QString &error);

/// The same items in portions that one request each can carry.
std::vector<Items> requestsFor(const Items &items);

/// The bit addresses that byte items lie on, as tags of a project: "1-DO17". The driver reads such bytes only
/// where the project has tags. Empty for all other items.
QStringList tagsFor(const Items &items, int station);

/// Item \a position of the driver's data, which must hold it.
quint32 valueAt(const QByteArray &data, ItemKind kind, int position);
/// The values of \a items in the driver's data and back; one number an item.
std::vector<quint32> valuesIn(const QByteArray &data, const Items &items);
QByteArray dataOf(const std::vector<quint32> &values, ItemKind kind);
