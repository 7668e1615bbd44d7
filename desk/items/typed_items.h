#pragma once

#include "desk/items/items.h"
#include "desk/types/byte_order.h"
#include "desk/types/typed_text.h"

/// Values of a type, one after the other from an address on, and the items by which the driver reads and
/// writes them: bits and bytes as such, words and double words where their order is the driver's, otherwise
/// the registers that they lie in.
struct TypedItems {
    Address address; ///< as it was given
    Items items;
    ValueType type;
    ByteOrder order;
    int count = 1;

    /// The address of value \a index.
    Address addressOf(int index) const;
    /// What people see for value \a index: its address, as in Items::label().
    QString label(int index) const;
};

/// The values at an address; \a order is a name, or empty for the address's own ("SW") or the driver's. The
/// error says what does not fit together and what was expected.
Result<TypedItems> typedItems(const Address &address, const ValueType &type, int count = 1,
                              const QString &order = {});
/// The items for the address, type, order and count of \a typed.
Items itemsOf(const TypedItems &typed);
/// Whether the driver can write them without touching a neighbour's bits.
Result<> checkWritable(const TypedItems &typed);

/// The values in the driver's data, which must hold them all, and the data by which the driver writes them.
std::vector<QByteArray> valuesIn(const QByteArray &data, const TypedItems &typed);
QByteArray dataOf(const std::vector<QByteArray> &values, const TypedItems &typed);
