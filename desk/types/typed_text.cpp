#include "desk/types/typed_text.h"

#include <QRegularExpression>

namespace
{

const int MaxCount = 65536;

// "hex8" is a type, "hexx8" eight of another.
Result<TypedText> parseTypeAndCount(const QString &text)
{
    static const QRegularExpression times(QStringLiteral("^(.*)x([0-9]+)$"),
                                          QRegularExpression::CaseInsensitiveOption);
    TypedText typed;
    const Result<ValueType> whole = parseType(text);
    const QRegularExpressionMatch match = times.match(text);
    const bool hasCount = !whole && match.hasMatch();
    const Result<ValueType> type = hasCount ? parseType(match.captured(1)) : whole;
    if (!type)
        return type.error();
    typed.type = *type;
    if (!hasCount)
        return typed;
    const int count = match.captured(2).toInt();
    typed.count = count;
    if (count < 1 || count > MaxCount)
        return Error{QStringLiteral("count \"%1\": expected 1 to %2").arg(match.captured(2)).arg(MaxCount)};
    return typed;
}

} // namespace

Result<TypedText> parseTypedText(const QString &text)
{
    const int at = int(text.indexOf(QLatin1Char('@')));
    const QString items = text.left(at);
    const int colon = int(items.indexOf(QLatin1Char(':')));
    TypedText typed;
    if (colon >= 0) {
        const Result<TypedText> suffix = parseTypeAndCount(items.mid(colon + 1));
        if (!suffix)
            return Error{QStringLiteral("address \"%1\": %2").arg(text, suffix.errorText())};
        typed = *suffix;
    }
    typed.address = items.left(colon);
    if (at < 0)
        return typed;
    typed.order = text.mid(at + 1);
    if (typed.order.isEmpty())
        return Error{
            QStringLiteral("address \"%1\": no order after \"@\"; expected one such as ABCD").arg(text)};
    return typed;
}
