#include "desk/types/value_type.h"

#include <QRegularExpression>

namespace
{

struct NamedType {
    const char *name;
    ValueType type;
};

// Of several names for a type the first is its own.
const NamedType NamedTypes[] = {
    {"bit", {Meaning::Bit, 1}},          {"bool", {Meaning::Bit, 1}},
    {"u8", {Meaning::Unsigned, 8}},      {"uint8", {Meaning::Unsigned, 8}},
    {"byte", {Meaning::Unsigned, 8}},    {"i8", {Meaning::Signed, 8}},
    {"int8", {Meaning::Signed, 8}},      {"u16", {Meaning::Unsigned, 16}},
    {"uint16", {Meaning::Unsigned, 16}}, {"unsigned", {Meaning::Unsigned, 16}},
    {"word", {Meaning::Unsigned, 16}},   {"i16", {Meaning::Signed, 16}},
    {"int16", {Meaning::Signed, 16}},    {"signed", {Meaning::Signed, 16}},
    {"u32", {Meaning::Unsigned, 32}},    {"uint32", {Meaning::Unsigned, 32}},
    {"dword", {Meaning::Unsigned, 32}},  {"i32", {Meaning::Signed, 32}},
    {"int32", {Meaning::Signed, 32}},    {"f32", {Meaning::Float, 32}},
    {"float", {Meaning::Float, 32}},     {"float32", {Meaning::Float, 32}},
    {"u64", {Meaning::Unsigned, 64}},    {"uint64", {Meaning::Unsigned, 64}},
    {"i64", {Meaning::Signed, 64}},      {"int64", {Meaning::Signed, 64}},
    {"f64", {Meaning::Float, 64}},       {"double", {Meaning::Float, 64}},
    {"float64", {Meaning::Float, 64}},   {"hex", {Meaning::Hex, 16}},
    {"hex8", {Meaning::Hex, 8}},         {"hex16", {Meaning::Hex, 16}},
    {"hex32", {Meaning::Hex, 32}},       {"hex64", {Meaning::Hex, 64}},
    {"bin", {Meaning::Binary, 16}},      {"binary", {Meaning::Binary, 16}},
    {"bin8", {Meaning::Binary, 8}},      {"bin16", {Meaning::Binary, 16}},
    {"bin32", {Meaning::Binary, 32}},    {"bin64", {Meaning::Binary, 64}},
    {"bcd16", {Meaning::Bcd, 16}},       {"bcd", {Meaning::Bcd, 16}},
    {"bcd32", {Meaning::Bcd, 32}},       {"bcd64", {Meaning::Bcd, 64}},
};

Result<ValueType> parseTextType(const QString &name, int size)
{
    if (size >= 1 && size <= MaxTextBytes)
        return ValueType{Meaning::Text, size * 8};
    return Error{QStringLiteral("type \"%1\": a text has 1 to %2 bytes").arg(name).arg(MaxTextBytes)};
}

} // namespace

Result<ValueType> parseType(const QString &name)
{
    for (const NamedType &named : NamedTypes) {
        if (name.compare(QLatin1String(named.name), Qt::CaseInsensitive) == 0)
            return named.type;
    }
    static const QRegularExpression text(QStringLiteral("^str(?:ing)?(\\d+)$"),
                                         QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = text.match(name);
    if (match.hasMatch())
        return parseTextType(name, match.captured(1).toInt());
    return Error{QStringLiteral("type \"%1\": expected bit, u8, u16, u32, u64, i8, i16, i32, i64, f32, f64, "
                                "hex, bin, bcd16, bcd32, bcd64, or str and a number of bytes")
                     .arg(name)};
}

QString nameOf(const ValueType &type)
{
    if (type.isText())
        return QStringLiteral("str%1").arg(type.bytes());
    for (const NamedType &named : NamedTypes) {
        if (type == named.type)
            return QLatin1String(named.name);
    }
    return {};
}
