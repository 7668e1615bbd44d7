#include "tests/plants/plant_drawing.h"

#include "desk/items/value_place.h"
#include "desk/types/typed_text.h"
#include "desk/types/value_bits.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

namespace
{

const int LastValue = 220;

} // namespace

Wanted wantedAt(const QString &address, const QString &expected)
{
    const Result<TypedText> text = parseTypedText(address);
    const Result<Address> at = parseAddress(text->address);
    Wanted wanted;
    wanted.point.at = *typedItems(*at, text->type.value_or(ValueType{Meaning::Unsigned, 16}), 1, text->order);
    wanted.point.at.isTyped = text->type.has_value();
    wanted.expected = expected;
    return wanted;
}

PlantDrawing::PlantDrawing(quint32 seed) : m_random(seed)
{
    m_case.plant.seed = seed;
    m_case.plant.slave.latencyMs = draw(3, 40);
    m_case.plant.jitter = draw(0, 10) * Millisecond;
    for (int offset = 0; offset < LastValue; ++offset) {
        m_values[offset] = draw(1000, 60000);
        m_case.plant.slave.memory.setValue(0, Area::HoldingRegisters, quint16(offset),
                                           quint16(m_values[offset]));
        m_case.plant.slave.memory.setValue(0, Area::InputRegisters, quint16(offset),
                                           quint16(draw(1000, 60000)));
        m_case.plant.slave.memory.setValue(0, Area::Coils, quint16(offset), quint16(draw(0, 1)));
    }
    m_case.doctor.target.host = QStringLiteral("plant.example");
}

int PlantDrawing::draw(int low, int high)
{
    return std::uniform_int_distribution<int>(low, high)(m_random);
}

QByteArray PlantDrawing::letters(int atLeast, int atMost)
{
    QByteArray text(draw(atLeast, atMost), 'A');
    for (char &letter : text)
        letter = static_cast<char>(draw('A', 'Z'));
    return text;
}

void PlantDrawing::everyReply(const QString &fault)
{
    EXPECT_TRUE(m_case.plant.slave.faults.add(fault + QStringLiteral("=100%")));
}

void PlantDrawing::share(const QString &fault, int percent)
{
    m_case.plant.slave.faults.setSeed(m_case.plant.seed);
    EXPECT_TRUE(m_case.plant.slave.faults.add(QStringLiteral("%1=%2%").arg(fault).arg(percent)));
}

void PlantDrawing::moveTo(int station)
{
    m_case.plant.slave.stations = {station};
}

void PlantDrawing::addHole(int first, int last)
{
    AreaRange hole;
    hole.area = Area::HoldingRegisters;
    hole.first = first - 1;
    hole.last = last - 1;
    m_case.plant.slave.memory.addHole(hole);
}

void PlantDrawing::want(const QString &address, const QString &expected)
{
    m_case.doctor.wanted.push_back(wantedAt(address, expected));
    m_case.words += expected.isEmpty() ? address : address + QLatin1Char('=') + expected;
}

void PlantDrawing::wantWords(int count)
{
    const int first = draw(10, 100);
    for (int i = 0; i < count; ++i)
        want(QStringLiteral("HR%1").arg(first + 5 * i), QString::number(m_values[first + 5 * i - 1]));
}

// Each limit lets only a tenth of what may stand there pass.
void PlantDrawing::wantWithin(int count)
{
    wantWords(count);
    for (Wanted &wanted : m_case.doctor.wanted) {
        const double value = wanted.expected.toDouble();
        wanted.expected.clear();
        wanted.point.low = value - draw(100, 3000);
        wanted.point.high = value + draw(100, 3000);
    }
    m_case.words.clear();
}

void PlantDrawing::wantFloats(int count, const QString &order)
{
    const int first = draw(10, 100);
    const Result<ByteOrder> inTruth =
        parseOrder(order.isEmpty() ? QStringLiteral("CDAB") : order, {Meaning::Float, 32});
    for (int i = 0; i < count; ++i) {
        const int number = first + 6 * i;
        const QByteArray text = QByteArray::number(draw(-5000, 5000) / 10.0 + 600, 'f', 1);
        const std::vector<quint16> registers =
            registersOf({*nearestFloat(text, 4)}, {Meaning::Float, 32}, *inTruth);
        for (size_t word = 0; word < registers.size(); ++word) {
            m_case.plant.slave.memory.setValue(0, Area::HoldingRegisters, quint16(number - 1 + int(word)),
                                               registers[word]);
        }
        want(QStringLiteral("HR%1:f32").arg(number), QString::fromLatin1(text));
    }
}

QString PlantDrawing::otherOrder()
{
    return QStringList{QStringLiteral("ABCD"), QStringLiteral("BADC"), QStringLiteral("DCBA")}.at(draw(0, 2));
}

void PlantDrawing::wantTenths(int count)
{
    wantWords(count);
    for (int i = 0; i < count; ++i) {
        Wanted &wanted = m_case.doctor.wanted[static_cast<size_t>(i)];
        const int offset = wanted.point.at.address.wireOffset();
        const int tenth = draw(100, 6000);
        m_case.plant.slave.memory.setValue(0, Area::HoldingRegisters, quint16(offset), quint16(tenth * 10));
        m_case.words[i] =
            m_case.words.at(i).section(QLatin1Char('='), 0, 0) + QStringLiteral("=%1").arg(tenth);
        wanted.expected = QString::number(tenth);
    }
}

void PlantDrawing::wantFloatsWithin(int count, const QString &order)
{
    wantFloats(count, order);
    for (Wanted &wanted : m_case.doctor.wanted) {
        const double value = wanted.expected.toDouble();
        wanted.expected.clear();
        wanted.point.low = value - draw(1, 20);
        wanted.point.high = value + draw(1, 20);
    }
    m_case.words.clear();
}

void PlantDrawing::wantBetweenZeros()
{
    const int number = draw(10, 100);
    for (const int zero : {number - 1, number + 1})
        m_case.plant.slave.memory.setValue(0, Area::HoldingRegisters, quint16(zero - 1), 0);
    want(QStringLiteral("HR%1").arg(number), QStringLiteral("0"));
}

void PlantDrawing::wantNonsense()
{
    want(QStringLiteral("HR%1").arg(draw(10, 100)), QStringLiteral("77"));
    want(QStringLiteral("HR%1").arg(draw(110, 200)), QStringLiteral("78"));
}

void PlantDrawing::shiftWanted(int shift)
{
    for (Wanted &wanted : m_case.doctor.wanted) {
        wanted.point.at.address.number -= shift;
        wanted.point.at.items.address.number -= shift;
    }
    for (int i = 0; i < m_case.words.size(); ++i) {
        const QString word = m_case.words.at(i);
        const QString own = QString::number(m_case.doctor.wanted[size_t(i)].point.at.address.number);
        const QString rest = word.mid(word.indexOf(QRegularExpression(QStringLiteral("[:=]"))));
        m_case.words[i] = QStringLiteral("HR") + own + rest;
    }
}

void PlantDrawing::moveToInputs()
{
    for (const Wanted &wanted : m_case.doctor.wanted)
        m_case.plant.slave.memory.setValue(0, Area::InputRegisters,
                                           quint16(wanted.point.at.address.wireOffset()),
                                           quint16(wanted.expected.toInt()));
    for (const Wanted &wanted : m_case.doctor.wanted)
        m_case.plant.slave.memory.setValue(0, Area::HoldingRegisters,
                                           quint16(wanted.point.at.address.wireOffset()), 7);
}

int PlantDrawing::firstWanted() const
{
    return m_case.doctor.wanted.front().point.at.address.number;
}
