#pragma once

#include "drivers/qt/qt_lines.h"

#include <QByteArray>

#include <random>
#include <string>

/// Random data of one test. Every run draws a new seed; trace() has it for a failure to show, as in
/// `SCOPED_TRACE(random.trace())`, and the environment variable DRIVER_TEST_SEED sets it.
class RandomData
{
public:
    RandomData();

    std::string trace() const;

    /// A number from \a low to \a high, both included.
    int between(int low, int high);
    quint32 number() { return static_cast<quint32>(engine()); }
    QByteArray bytes(int size);

private:
    unsigned int seed;
    std::mt19937 engine;
};
