#include "kit/process/random_sequence.h"

#include "drivers/qt/qt_lines.h"

#include <cstdlib>

namespace kit
{

namespace
{

const uint Seed = 20171;
// More than any driver draws within one check.
const int MostDrawn = 200000;

int nextNumber()
{
    return rand();
}

int nextSmallNumber()
{
    return static_cast<int>(lrand48());
}

void seed(uint number)
{
    return srand(number);
}

void seedSmall(uint number)
{
    srand48(static_cast<long>(number));
}

struct Sequence {
    const char *name;
    void (*seed)(uint number);
    int (*next)();
};

const Sequence Sequences[] = {
    {"qrand()", seedRandomNumbers, nextRandomNumber},
    {"rand()", seed, nextNumber},
    {"lrand48()", seedSmall, nextSmallNumber},
};

// Qt 6 has a sequence that nobody seeds.
bool isSeeded(const Sequence &sequence)
{
    return CanSeedRandomNumbers || sequence.seed != seedRandomNumbers;
}

// Whether three numbers that are drawn now follow each other in the sequence of the seed.
bool isGoingOn(const Sequence &sequence)
{
    const int first = sequence.next();
    const int second = sequence.next();
    const int third = sequence.next();
    sequence.seed(Seed);
    int drawn[3] = {0, sequence.next(), sequence.next()};
    for (int i = 0; i < MostDrawn; ++i) {
        drawn[0] = drawn[1];
        drawn[1] = drawn[2];
        drawn[2] = sequence.next();
        if (drawn[0] == first && drawn[1] == second && drawn[2] == third)
            return true;
    }
    return false;
}

} // namespace

RandomSequences::RandomSequences()
{
    for (const Sequence &sequence : Sequences)
        sequence.seed(Seed);
}

const char *RandomSequences::disturbed() const
{
    for (const Sequence &sequence : Sequences)
        if (isSeeded(sequence) && !isGoingOn(sequence))
            return sequence.name;
    return nullptr;
}

} // namespace kit
