#include "desk/items/address.h"

#include "desk/items/number_text.h"
#include "drivers/qt/qt_lines.h"

#include <algorithm>
#include <limits>

namespace
{

const char DoubleWordMarker[] = "SW";
const int MarkerLength = sizeof DoubleWordMarker - 1;

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

// Takes a text apart from its beginning on. By hand: a project may have a hundred thousand addresses, and
// regular expressions take ten times as long.
class Scanner
{
public:
    explicit Scanner(const QString &text) : m_text(text) {}

    bool isAtEnd() const { return m_at == m_text.size(); }
    // Whether the next characters are these, whatever their case; then they are passed.
    bool take(QLatin1String expected)
    {
        if (QStringView(m_text).mid(m_at, expected.size()).compare(expected, Qt::CaseInsensitive) != 0)
            return false;
        m_at += sizeOf(expected);
        return true;
    }
    // A run of digits: their number, or one beyond every limit when it has more digits than any limit.
    // Nothing where there is none.
    std::optional<int> takeNumber()
    {
        const int begin = m_at;
        qint64 number = 0;
        for (; m_at < m_text.size() && isDigit(m_text.at(m_at)); ++m_at)
            number = std::min<qint64>(10 * number + m_text.at(m_at).unicode() - '0',
                                      std::numeric_limits<int>::max());
        return m_at > begin ? std::optional<int>(static_cast<int>(number)) : std::nullopt;
    }
    // A number and the "-" after it.
    std::optional<int> takeStation()
    {
        const int begin = m_at;
        const std::optional<int> station = takeNumber();
        if (station && take(QLatin1String("-")))
            return station;
        m_at = begin;
        return std::nullopt;
    }
    // Letters, in upper case, with the digit in those of "FN5DO".
    QString takeAreaName()
    {
        const int begin = m_at;
        if (take(QLatin1String("FN")))
            m_at = !isAtEnd() && isDigit(m_text.at(m_at)) ? m_at + 1 : begin;
        while (!isAtEnd() && isLetter(m_text.at(m_at)))
            ++m_at;
        return m_text.mid(begin, m_at - begin).toUpper();
    }

private:
    static bool isDigit(QChar character)
    {
        return character >= QLatin1Char('0') && character <= QLatin1Char('9');
    }
    static bool isLetter(QChar character)
    {
        const QChar upper = character.unicode() < 128 ? character.toUpper() : QChar();
        return upper >= QLatin1Char('A') && upper <= QLatin1Char('Z');
    }

    const QString &m_text;
    int m_at = 0;
};

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
    Scanner scanner(text);
    Address address;
    address.station = scanner.takeStation().value_or(address.station);
    address.areaName = scanner.takeAreaName();
    const std::optional<int> number = scanner.takeNumber();
    address.highWordFirst = scanner.take(QLatin1String(DoubleWordMarker));
    const bool hasPoint = scanner.take(QLatin1String("."));
    const std::optional<int> bit = hasPoint ? scanner.takeNumber() : std::nullopt;
    if (address.areaName.size() > MarkerLength &&
        address.areaName.endsWith(QLatin1String(DoubleWordMarker))) {
        address.areaName.chop(MarkerLength);
        address.highWordFirst = true;
    }
    address.number = number.value_or(0);
    address.bit = bit.value_or(address.bit);

    QString problem;
    const KnownArea *known = findArea(address.areaName);
    if (known == nullptr) {
        problem = problemWithArea(address.areaName);
    } else if (!number) {
        problem = QStringLiteral("no number after the area; expected one from 1 to 65536");
    } else if (!scanner.isAtEnd()) {
        problem = QStringLiteral("expected nothing after the number but \".\" and a bit");
    } else if (hasPoint && !bit) {
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
    const auto position = text.indexOf(dots);
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
