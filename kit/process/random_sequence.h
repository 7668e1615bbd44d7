#pragma once

namespace kit
{

/// The random sequences of the process, which are the host's: a driver may draw from them and must not seed
/// them.
class RandomSequences
{
public:
    /// Seeds them all.
    RandomSequences();
    /// Whether each goes on as it began, after a few numbers more or less. The name of the first that does
    /// not; null when all do.
    const char *disturbed() const;
};

} // namespace kit
