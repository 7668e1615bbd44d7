#pragma once

#include "tests/plants/plant_set.h"

const qint64 Millisecond = 1000;

/// A value that is wanted at "HR5:f32@ABCD".
Wanted wantedAt(const QString &address, const QString &expected = {});

/// A plant in the making: a good one with values that a seed draws, to which faults are added.
class PlantDrawing
{
public:
    explicit PlantDrawing(quint32 seed);

    PlantCase &of() { return m_case; }
    PlantOptions *operator->() { return &m_case.plant; }
    int draw(int low, int high);
    QByteArray letters(int atLeast, int atMost);

    /// A fault of the embedded slave in every reply, or in a share of them.
    void everyReply(const QString &fault);
    void share(const QString &fault, int percent);
    void moveTo(int station);
    /// Holding registers that do not exist, by their numbers.
    void addHole(int first, int last);

    /// Values that are to be found: as they are, within limits, as floats in an order (empty for the
    /// driver's), ten times as large as expected, or elsewhere.
    void wantWords(int count);
    void wantWithin(int count);
    void wantFloats(int count, const QString &order);
    void wantTenths(int count);
    void wantFloatsWithin(int count, const QString &order);
    void wantNonsense();
    /// A zero, which stands on both sides of where it is looked for.
    void wantBetweenZeros();
    /// An order of words that is not the driver's.
    QString otherOrder();
    /// All of them are looked for so many addresses lower than they stand.
    void shiftWanted(int shift);
    /// All of them are input registers in truth.
    void moveToInputs();
    int firstWanted() const;

private:
    void want(const QString &address, const QString &expected);

    PlantCase m_case;
    std::mt19937 m_random;
    std::map<int, int> m_values;
};
