#pragma once

#include <QtGlobal>

#include <string>

/// Which of very many cases a run goes through: all of them with DRIVER_TEST_ALL=1 in the environment,
/// otherwise one part of several, another one each time. trace() has what repeats it, as RandomData has.
class PartOfAll
{
public:
    /// One case in \a parts, when it is not all of them.
    explicit PartOfAll(quint32 parts);

    bool isAll() const { return divisor == 1; }
    const std::string &trace() const { return text; }

    /// Whether \a block, some number of cases, belongs to the part. Of as many blocks in a row as there are
    /// parts, one does.
    bool has(quint32 block) const { return (block + salt) % divisor == 0; }

private:
    quint32 divisor;
    quint32 salt;
    std::string text;
};
