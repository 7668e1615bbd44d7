#include "tests/support/part_of_all.h"

#include "tests/support/random_data.h"

#include <iostream>

PartOfAll::PartOfAll(quint32 parts) : divisor(qgetenv("DRIVER_TEST_ALL") == "1" ? 1 : parts), salt(0)
{
    if (isAll()) {
        text = "all cases";
    } else {
        RandomData random;
        salt = random.number() % parts;
        text = random.trace() + ", one case in " + std::to_string(parts);
    }
    std::cout << text << std::endl;
}
