#include "desk/types/decimal.h"

#include "drivers/qt/qt_lines.h"

#include <QRegularExpression>

namespace
{

const int MaxWholeDigits = 20; // of 64 bits

// Without the zeros that say nothing.
Decimal normal(Decimal number)
{
    int zeros = 0;
    while (zeros < number.digits.size() && number.digits.at(zeros) == '0')
        ++zeros;
    number.digits.remove(0, zeros);
    while (number.digits.endsWith('0')) {
        number.digits.chop(1);
        ++number.exponent;
    }
    if (number.isZero())
        number.exponent = 0;
    return number;
}

} // namespace

bool operator==(const Decimal &left, const Decimal &right)
{
    return left.digits == right.digits && left.exponent == right.exponent &&
           (left.isNegative == right.isNegative || left.isZero());
}

std::optional<Decimal> parseDecimal(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("^([+-])?(?=\\.?[0-9])([0-9]*)(?:\\.([0-9]*))?(?:e([+-]?[0-9]{1,4}))?$"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const QByteArray fraction = match.captured(3).toLatin1();
    Decimal number;
    number.isNegative = match.captured(1) == QLatin1String("-");
    number.digits = match.captured(2).toLatin1() + fraction;
    number.exponent = match.captured(4).toInt() - sizeOf(fraction);
    return normal(number);
}

Decimal rounded(const Decimal &number)
{
    if (number.isWhole())
        return number;
    Decimal whole = number;
    whole.exponent = 0;
    const int kept = sizeOf(number.digits) + number.exponent;
    const bool isUp = kept >= 0 && number.digits.at(kept) >= '5';
    whole.digits = kept > 0 ? number.digits.left(kept) : QByteArray();
    if (isUp) {
        whole.digits.prepend('0');
        int digit = sizeOf(whole.digits) - 1;
        for (; whole.digits.at(digit) == '9'; --digit)
            whole.digits[digit] = '0';
        ++whole.digits.data()[digit];
    }
    return normal(whole);
}

std::optional<quint64> magnitudeOf(const Decimal &whole)
{
    if (whole.digits.size() + whole.exponent > MaxWholeDigits)
        return std::nullopt;
    bool fits = false;
    const quint64 magnitude =
        whole.isZero() ? 0 : (whole.digits + QByteArray(whole.exponent, '0')).toULongLong(&fits);
    return fits || whole.isZero() ? std::optional<quint64>(magnitude) : std::nullopt;
}
