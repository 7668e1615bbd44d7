#include "desk/items/address.h"

#include "desk/items/number_text.h"

#include <QRegularExpression>

#include <limits>

namespace
{

const int MarkerLength = 2; // "SW"

struct KnownArea {
    const char *name;
    Area area;
};

const KnownArea KnownAreas[] = {{"HR", Area::HoldingRegisters},
                                {"FN6HR", Area::HoldingRegisters},
                                {"IR", Area::InputRegisters},
                                {"DI", Area::DiscreteInputs},
                                {"DO", Area::Coils},
                                {"FN5DO", Area::Coils}};

const KnownArea *findArea(const QString &name)
{
    for (const KnownArea &known : KnownAreas) {
        if (name == QLatin1String(known.name))
            return &known;
    }
    return nullptr;
}

// A number of the text, or a value beyond every limit when it has more digits than any limit.
int numberOf(const QString &digits)
{
    bool fits = false;
    const int number = digits.toInt(&fits);
    return fits ? number : std::numeric_limits<int>::max();
}

QString problemWithArea(const QString &area)
{
    const QString expected =
        QStringLiteral("expected HR, FN6HR, IR, DI, DO or FN5DO and a number, such as HR100, "
                       "DO5 or HR7.3");
    if (area.isEmpty())
        return QStringLiteral("no area; ") + expected +
               QStringLiteral(" (40001 is HR1, 30001 IR1, 10001 DI1, 1 DO1)");
    if (area == QLatin1String("SW"))
        return QStringLiteral(
            "SW marks double words with the high word first and is no area: write HRSW10 or IRSW10");
    return QStringLiteral("unknown area \"%1\"; ").arg(area) + expected;
}

QString problemWith(const Address &address)
{
    if (address.station > modbus::MaxStationNumber)
        return QStringLiteral("the station must be 0 to 255");
    if (address.number < 1 || address.number > modbus::AddressSpace)
        return QStringLiteral("the number counts from 1 and must be 1 to 65536");
    if (address.bit >= 0 && address.isBitArea())
        return QStringLiteral("%1 addresses are bits themselves and have no bit number")
            .arg(address.areaName);
    if (address.bit >= modbus::RegisterBits)
        return QStringLiteral("a register has the bits 0 to 15");
    if (address.highWordFirst && address.bit >= 0)
        return QStringLiteral("SW marks double words, which have no bit number");
    if (address.highWordFirst && address.isBitArea())
        return QStringLiteral("SW marks double words, and %1 addresses are bits").arg(address.areaName);
    return {};
}

} // namespace

QString Address::text() const
{
    const QString bitText = bit < 0 ? QString() : QLatin1Char('.') + QString::number(bit);
    const QString marker = highWordFirst ? QStringLiteral("SW") : QString();
    return areaName + marker + QString::number(number) + bitText;
}

QString Address::label() const
{
    return station < 0 ? text() : QString::number(station) + QLatin1Char('-') + text();
}

Result<Address> parseAddress(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("^(?:(?<station>\\d+)-)?(?<area>(?:FN\\d)?[A-Z]*)(?<number>\\d*)(?<marker>SW)?"
                       "(?<point>\\.)?(?<bit>\\d*)(?<rest>.*)$"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = form.match(text);
    const QString number = match.captured(QStringLiteral("number"));

    Address address;
    address.areaName = match.captured(QStringLiteral("area")).toUpper();
    address.highWordFirst = !match.captured(QStringLiteral("marker")).isEmpty();
    if (address.areaName.size() > MarkerLength && address.areaName.endsWith(QLatin1String("SW"))) {
        address.areaName.chop(MarkerLength);
        address.highWordFirst = true;
    }
    if (match.capturedLength(QStringLiteral("station")) > 0)
        address.station = numberOf(match.captured(QStringLiteral("station")));
    if (match.capturedLength(QStringLiteral("point")) > 0)
        address.bit = numberOf(match.captured(QStringLiteral("bit")));
    address.number = numberOf(number);

    QString problem;
    const KnownArea *known = findArea(address.areaName);
    if (known == nullptr) {
        problem = problemWithArea(address.areaName);
    } else if (number.isEmpty()) {
        problem = QStringLiteral("no number after the area; expected one from 1 to 65536");
    } else if (match.capturedLength(QStringLiteral("rest")) > 0 ||
               (match.capturedLength(QStringLiteral("point")) == 0 &&
                match.capturedLength(QStringLiteral("bit")) > 0)) {
        problem = QStringLiteral("expected nothing after the number but \".\" and a bit");
    } else if (match.capturedLength(QStringLiteral("point")) > 0 &&
               match.capturedLength(QStringLiteral("bit")) == 0) {
        problem = QStringLiteral("no bit number after the point; expected 0 to 15");
    } else {
        address.area = known->area;
        problem = problemWith(address);
    }
    if (problem.isEmpty())
        return address;
    return Error{QStringLiteral("address \"%1\": %2").arg(text, problem)};
}

Result<AddressSpan> parseAddressSpan(const QString &text)
{
    const QString dots = QStringLiteral("..");
    const int position = text.indexOf(dots);
    const Result<Address> first = parseAddress(position < 0 ? text : text.left(position));
    if (!first)
        return Error{position < 0 ? first.errorText()
                                  : QStringLiteral("\"%1\": %2").arg(text, first.errorText())};
    if (position < 0)
        return AddressSpan{*first, first->number, false};
    const Result<int> last =
        parseNumber(QStringLiteral("the last number of \"%1\":").arg(text), text.mid(position + dots.size()),
                    first->number, modbus::AddressSpace);
    if (!last)
        return last.error();
    if (first->bit >= 0)
        return Error{
            QStringLiteral("\"%1\": ranges are of whole registers, or of bits of DI and DO").arg(text)};
    return AddressSpan{*first, *last, true};
}
