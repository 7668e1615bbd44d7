#include "tests/lines/layouts.h"

#include <algorithm>

namespace
{

class Random
{
public:
    explicit Random(unsigned int seed) : m_engine(seed) {}

    int number(int least, int most) { return std::uniform_int_distribution<>(least, most)(m_engine); }
    bool oneIn(int count) { return number(1, count) == 1; }

private:
    std::mt19937 m_engine;
};

AreaRange registerAt(int number)
{
    return {1, Area::HoldingRegisters, number, number};
}

Layout steppedLayout(unsigned int seed, int count, int maxStep)
{
    Random random(seed);
    Layout layout;
    int number = 0;
    for (int i = 0; i < count; ++i) {
        number += random.number(1, maxStep);
        layout.points.push_back(registerAt(number));
    }
    return layout;
}

// Steps of one place; most of them small, some wide, as devices have their blocks.
void addPoints(Layout &layout, Random &random, int station, Area area, int count)
{
    const int maxStep = random.oneIn(3) ? random.number(1, 40) : random.number(1, 6);
    const int maxJump = random.number(maxStep, isBitArea(area) ? 2000 : 300);
    const bool hasDoubles = !isBitArea(area) && random.oneIn(2);
    int number = random.number(0, 200);
    for (int i = 0; i < count && number < modbus::AddressSpace - 1; ++i) {
        const bool isDouble = hasDoubles && random.oneIn(3);
        layout.points.push_back({station, area, number, number + (isDouble ? 1 : 0)});
        if (!random.oneIn(8)) // otherwise a bit of the same register, or a double word over it
            number += random.oneIn(12) ? random.number(1, maxJump) : random.number(1, maxStep);
    }
}

// Runs of addresses that are not there: between points, or over some of them.
void addHoles(Layout &layout, Random &random, int count, bool areOverPoints)
{
    for (int i = 0; i < count; ++i) {
        const AreaRange &point =
            layout.points[static_cast<size_t>(random.number(0, static_cast<int>(layout.points.size()) - 1))];
        std::set<int> &holes = layout.device.holes[{point.station, point.area}];
        const int first = areOverPoints ? point.first : point.last + 1;
        const int length = random.oneIn(4) ? random.number(1, 30) : random.number(1, 3);
        for (int number = first; number < first + length; ++number) {
            const auto isWanted = [&](const AreaRange &other) {
                return other.station == point.station && other.area == point.area && other.first <= number &&
                       number <= other.last;
            };
            if (!areOverPoints && std::any_of(layout.points.begin(), layout.points.end(), isWanted))
                break;
            holes.insert(number);
        }
    }
}

} // namespace

Layout denseLayout(unsigned int seed)
{
    return steppedLayout(seed, 395, 4);
}

Layout sparseLayout(unsigned int seed)
{
    return steppedLayout(seed, 466, 90);
}

Layout scatteredLayout(unsigned int seed)
{
    std::mt19937 engine(seed);
    std::vector<int> numbers(4000);
    for (int i = 0; i < 4000; ++i)
        numbers[static_cast<size_t>(i)] = i;
    std::shuffle(numbers.begin(), numbers.end(), engine);
    Layout layout;
    for (int i = 0; i < 500; ++i)
        layout.points.push_back(registerAt(numbers[static_cast<size_t>(i)]));
    return layout;
}

Layout mixedLayout(unsigned int seed)
{
    Random random(seed);
    Layout layout;
    for (const Area area :
         {Area::DiscreteInputs, Area::Coils, Area::InputRegisters, Area::HoldingRegisters}) {
        int number = 0;
        for (int i = 0; i < 100; ++i) {
            number += random.number(1, 5);
            const bool isDouble = !isBitArea(area) && random.oneIn(5);
            layout.points.push_back({1, area, number, number + (isDouble ? 1 : 0)});
        }
    }
    addHoles(layout, random, 8, false);
    addHoles(layout, random, 4, true);
    return layout;
}

Layout randomLayout(unsigned int seed)
{
    Random random(seed);
    Layout layout;
    const int stations = random.oneIn(4) ? random.number(2, 3) : 1;
    for (int station = 1; station <= stations; ++station) {
        for (const Area area :
             {Area::DiscreteInputs, Area::Coils, Area::InputRegisters, Area::HoldingRegisters}) {
            if (area == Area::HoldingRegisters || random.oneIn(2))
                addPoints(layout, random, station, area, random.number(1, random.oneIn(2) ? 20 : 300));
        }
    }
    if (random.oneIn(2))
        addHoles(layout, random, random.number(1, 10), false);
    if (random.oneIn(2))
        addHoles(layout, random, random.number(1, 6), true);
    if (random.oneIn(4)) {
        const AreaRange &point = layout.points.back();
        layout.device.boundaries[{point.station, point.area}].insert(point.first);
    }
    if (random.oneIn(4))
        layout.device.maxRegisters = random.number(2, 124);
    if (random.oneIn(6))
        layout.device.maxBits = random.number(1, 1999);
    return layout;
}
