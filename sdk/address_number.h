#pragma once

#include <QString>

/// The number of an address text that is just \a symbol, in either case, and decimal digits: 100 of "D100".
/// -1 for any other text, and for a number that no int holds.
inline int addressNumber(const QString &address, const char *symbol)
{
    const QString name = QLatin1String(symbol);
    const QString digits = address.mid(name.size());
    if (!address.startsWith(name, Qt::CaseInsensitive) || digits.isEmpty())
        return -1;
    for (int i = 0; i < digits.size(); ++i)
        if (digits.at(i) < QLatin1Char('0') || digits.at(i) > QLatin1Char('9'))
            return -1;
    bool isNumber = false;
    const int number = digits.toInt(&isNumber);
    return isNumber ? number : -1;
}
