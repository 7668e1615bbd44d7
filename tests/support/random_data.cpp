#include "tests/support/random_data.h"

namespace
{

unsigned int chosenSeed()
{
    const QByteArray given = qgetenv("DRIVER_TEST_SEED");
    return given.isEmpty() ? std::random_device()() : given.toUInt();
}

} // namespace

RandomData::RandomData() : seed(chosenSeed()), engine(seed) {}

std::string RandomData::trace() const
{
    return "DRIVER_TEST_SEED=" + std::to_string(seed);
}

int RandomData::between(int low, int high)
{
    return std::uniform_int_distribution<int>(low, high)(engine);
}

QByteArray RandomData::bytes(int size)
{
    QByteArray data(size, '\0');
    for (int i = 0; i < size; ++i)
        data[i] = static_cast<char>(between(0, 255));
    return data;
}
