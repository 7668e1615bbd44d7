#pragma once

#include "desk/items/items.h"
#include "desk/items/value_form.h"
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
    bool isTyped = false; ///< by whoever asked for them; otherwise the type is what kind and form make

    /// What people and programs call it: the type's name, or the kind's.
    QString kindName() const { return isTyped ? nameOf(type) : nameOf(items.kind); }
    /// The same with the order where that is not the type's default: "f32@ABCD".
    QString typeText() const;
    /// The address of value \a index.
    Address addressOf(int index) const;
    /// What people see for value \a index: its address, as in Items::label().
    QString label(int index) const;
    /// Its address on the wire; -1 when it is not known.
    int offsetOf(int index) const { return items.isRaw() ? -1 : addressOf(index).wireOffset(); }
};

/// The values at an address; \a order is a name, or empty for the address's own ("SW") or the driver's. The
/// error says what does not fit together and what was expected.
Result<TypedItems> typedItems(const Address &address, const ValueType &type, int count = 1,
                              const QString &order = {});
/// Items without a type, whose numbers are written in a form.
TypedItems typedItems(const Items &items, ValueForm form);

/// \a count of them, from value \a first on.
TypedItems partOf(const TypedItems &typed, int first, int count);

/// Whether the driver can write them without touching a neighbour's bits.
Result<> checkWritable(const TypedItems &typed);

/// The data by which the driver writes the values.
QByteArray dataOf(const std::vector<QByteArray> &values, const TypedItems &typed);
