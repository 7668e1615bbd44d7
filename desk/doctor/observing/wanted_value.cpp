#include "desk/doctor/observing/wanted_value.h"

#include "desk/items/value_place.h"
#include "desk/wire/rtu_frame.h"

#include <cmath>

namespace
{

// Registers with their low bytes first, as valueAt() takes them; bits as they come.
QByteArray dataOf(const QByteArray &reply)
{
    QByteArray bytes = reply.mid(3, byteAt(reply, 2));
    if (modbus::isReadOfBits(functionOf(reply)))
        return bytes;
    std::vector<quint16> registers;
    for (int i = 0; i + 1 < bytes.size(); i += modbus::RegisterBytes)
        registers.push_back(wordAt(bytes, i));
    return driverDataOf(registers);
}

// Half of what the last digit stands for.
double toleranceOf(const QString &number)
{
    const int point = int(number.indexOf(QLatin1Char('.')));
    const int decimals = point < 0 ? 0 : int(number.size()) - point - 1;
    return std::pow(10.0, -decimals) / 2;
}

// Registers in a wrong order often look like numbers so near to 0 that they lie within any limits.
bool isPlausible(const ValueType &type, double number)
{
    const double smallest = 1e-20;
    return type.meaning != Meaning::Float || number == 0 || std::abs(number) > smallest;
}

bool isExpected(const Wanted &wanted, const QByteArray &value, const Guess &guess)
{
    const Point &point = wanted.point;
    if (point.at.type.isText())
        return stringOf(value, point.encoding) == wanted.expected;
    const Result<QByteArray> exact = parsePointValue(point, wanted.expected, false);
    if (guess.factor == 1 && exact && *exact == value)
        return true;
    const std::optional<double> number = numberOf(value, point.at.type);
    const std::optional<double> expected = parseNumberText(wanted.expected);
    if (!number || !expected)
        return false;
    const bool isRounded = point.at.type.meaning == Meaning::Float || !point.scaling.isNeutral();
    const double tolerance = isRounded ? toleranceOf(wanted.expected) * 1.000001 : 1e-9;
    const double shown = *number * point.scaling.scale + point.scaling.offset;
    return std::abs(shown / guess.factor - *expected) <= tolerance;
}

} // namespace

Area otherArea(Area area)
{
    switch (area) {
    case Area::Coils: return Area::DiscreteInputs;
    case Area::DiscreteInputs: return Area::Coils;
    case Area::InputRegisters: return Area::HoldingRegisters;
    case Area::HoldingRegisters: break;
    }
    return Area::InputRegisters;
}

QString lettersOf(Area area)
{
    switch (area) {
    case Area::Coils: return QStringLiteral("DO");
    case Area::DiscreteInputs: return QStringLiteral("DI");
    case Area::InputRegisters: return QStringLiteral("IR");
    case Area::HoldingRegisters: break;
    }
    return QStringLiteral("HR");
}

QByteArray requestFor(int station, const Wanted &wanted, const Guess &guess)
{
    const AreaRange range = rangeOf(wanted.point.at);
    const int first = range.first + guess.shift;
    const int count = range.last - range.first + 1;
    if (first < 0 || first + count > modbus::AddressSpace)
        return {};
    return readRequest(station, guess.isInOtherArea ? otherArea(range.area) : range.area, first, count);
}

QByteArray valueIn(const QByteArray &reply, const Wanted &wanted, const Guess &guess)
{
    ValuePlace place = placeIn(rangeOf(wanted.point.at), wanted.point.at);
    place.order = guess.order.value_or(place.order);
    return valueAt(dataOf(reply), place);
}

bool fits(const Wanted &wanted, const QByteArray &value, const Guess &guess)
{
    if (!wanted.expected.isEmpty())
        return isExpected(wanted, value, guess);
    const std::optional<double> number = numberOf(value, wanted.point.at.type);
    return number && isPlausible(wanted.point.at.type, *number) &&
           shownOf(wanted.point, value).limit.isEmpty();
}

QString shownText(const Wanted &wanted, const QByteArray &value)
{
    return shownOf(wanted.point, value).withUnit(wanted.point.unit);
}
