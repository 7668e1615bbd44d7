#include "drivers/modbus_rtu_slave_over_tcp/project/station_tag.h"

namespace
{

const QChar *endOfDigits(const QChar *c, const QChar *end)
{
    while (c != end && c->isDigit())
        ++c;
    return c;
}

unsigned int numberBetween(const QChar *start, const QChar *end)
{
    return QString(start, static_cast<int>(end - start)).toUInt();
}

bool isLetter(QChar c, char small)
{
    return c.unicode() < 0x80 && c.toLower() == QLatin1Char(small);
}

// Whether the text goes on with `letters`, given small, in any case; c moves past them then.
bool skip(const QChar *&c, const QChar *end, const char *letters)
{
    const QChar *next = c;
    for (; *letters != '\0'; ++letters, ++next) {
        if (next == end || !isLetter(*next, *letters))
            return false;
    }
    c = next;
    return true;
}

} // namespace

bool splitStationTag(const QString &text, StationTag &tag)
{
    const QChar *const station = text.constData();
    const QChar *const end = station + text.size();
    const QChar *c = endOfDigits(station, end);
    const QChar *const stationEnd = c;
    if (c == station || !skip(c, end, "-"))
        return false;
    const bool isCoil = skip(c, end, "fn5do") || skip(c, end, "do");
    if (!isCoil && !skip(c, end, "di"))
        return false;
    const QChar *const number = c;
    c = endOfDigits(number, end);
    if (c == number)
        return false;
    const StationTag parts = {numberBetween(station, stationEnd), isCoil, numberBetween(number, c)};
    tag = parts;
    return true;
}
