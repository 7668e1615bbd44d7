#pragma once

#include "kit/suite/check.h"

namespace kit
{

/// A check and what came of it.
struct Result {
    Check check;
    Verdict verdict;
};
using Results = std::vector<Result>;

int countOf(Verdict::State state, const Results &results);

} // namespace kit
