#pragma once

#include "desk/types/value_type.h"

#include <QByteArray>

#include <optional>
#include <vector>

/// The order in which the bytes of a value lie in registers. Named by letters, A for the most significant
/// byte: "ABCD" begins with it, "CDAB" has the low word first, "BADC" the low byte of each word, "DCBA" both.
struct ByteOrder {
    bool isHighWordFirst = false;
    bool isLowByteFirst = false;
};

inline bool operator==(const ByteOrder &left, const ByteOrder &right)
{
    return left.isHighWordFirst == right.isHighWordFirst && left.isLowByteFirst == right.isLowByteFirst;
}

/// The driver's own: the low word first, high bytes first; bytes that share a register the low one first.
/// Texts begin with the first register's high byte.
ByteOrder defaultOrder(const ValueType &type);

/// Reads the name of an order for values of \a type: four letters for any, which stand for the eight of 64
/// bits too; two ("AB", "BA") for values within a register and for texts, of which nothing but the order of
/// bytes counts.
Result<ByteOrder> parseOrder(const QString &name, const ValueType &type);
/// The name of an order for values of \a type, in as many letters as they have bytes; "AB" or "BA" within
/// registers.
QString nameOf(const ByteOrder &order, const ValueType &type);

/// Registers as the driver hands them over and takes them: their low bytes first.
std::vector<quint16> registersIn(const QByteArray &driverData);
QByteArray driverDataOf(const std::vector<quint16> &registers);

/// The values of \a type that the registers hold, \a count of them, or as many as there are whole.
std::vector<QByteArray> valuesIn(const std::vector<quint16> &registers, const ValueType &type,
                                 const ByteOrder &order, int count);
/// The registers that hold the values. What is left over of the last one is zero.
std::vector<quint16> registersOf(const std::vector<QByteArray> &values, const ValueType &type,
                                 const ByteOrder &order);
