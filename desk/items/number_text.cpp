#include "desk/items/number_text.h"

Result<int> parseNumber(const QString &what, const QString &text, int min, int max)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (isNumber && number >= min && number <= max)
        return number;
    return Error{QStringLiteral("%1 \"%2\": expected a whole number from %3 to %4")
                     .arg(what, text, QString::number(min), QString::number(max))};
}

QString counted(qint64 number, const char *thing)
{
    return QStringLiteral("%1 %2%3").arg(QString::number(number), QLatin1String(thing),
                                         QLatin1String(number == 1 ? "" : "s"));
}
